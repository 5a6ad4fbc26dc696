#include "zentavo/platform/locale_code_page.h"

#include <cwchar>

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

std::int32_t LocaleCodePage(std::uint32_t locale) {
  wchar_t digits[7] = {};
  GetLocaleInfoW(locale, LOCALE_IDEFAULTANSICODEPAGE, digits, static_cast<int>(std::size(digits)));
  return static_cast<std::int32_t>(std::wcstol(digits, nullptr, 10));
}

}  // namespace zentavo::platform
