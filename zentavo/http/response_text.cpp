#include "zentavo/http/response_text.h"

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/http/header_text.h"
#include "zentavo/platform/code_pages.h"

namespace zentavo {

namespace {

constexpr std::uint32_t kUtf7 = 65000;
constexpr std::uint32_t kUtf8 = 65001;
constexpr StringView kWindows = u"windows-";

std::uint32_t CodePageOf(StringView charset) {
  if (SameText(charset, u"utf-7")) return kUtf7;
  if (!SameText(charset.substr(0, kWindows.size()), kWindows)) return kUtf8;
  const std::int32_t number = StrToIntDef(charset.substr(kWindows.size()), 0);
  const auto code_page = static_cast<std::uint32_t>(number);
  return number > 0 && platform::CodePageKnown(code_page) ? code_page : kUtf8;
}

String FromUtf16(std::string_view bytes) {
  String text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(bytes[i]);
    const auto high = static_cast<unsigned char>(bytes[i + 1]);
    text += static_cast<char16_t>(low | (high << 8));
  }
  if (bytes.size() % 2 != 0) text += u'\uFFFD';
  return text;
}

}  // namespace

String ResponseText(std::string_view bytes, StringView content_type) {
  const StringView charset = HeaderParameter(content_type, u"charset");
  if (SameText(charset, u"utf-16")) return FromUtf16(bytes);
  const std::uint32_t code_page = CodePageOf(charset);
  return code_page == kUtf8 ? FromUtf8(bytes) : FromCodePage(bytes, code_page);
}

}  // namespace zentavo
