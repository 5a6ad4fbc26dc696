#include "zentavo/platform/system_error.h"

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

std::uint32_t LastSystemError() {
  return GetLastError();
}

std::u16string SystemErrorText(std::uint32_t code) {
  wchar_t buffer[512];
  const DWORD size =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                     buffer, static_cast<DWORD>(std::size(buffer)), nullptr);
  std::wstring_view text(buffer, size);
  while (!text.empty() && text.back() <= L' ') text.remove_suffix(1);
  return FromWide(!text.empty() ? std::wstring(text) : L"Unknown error " + std::to_wstring(code));
}

}  // namespace zentavo::platform
