#include "zentavo/genlib/code_pages.h"

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/platform/locale_code_page.h"

namespace zentavo {

namespace {

std::uint32_t PageOf(std::int32_t code_page) {
  if (code_page < 0) throw EConvertError(u"Unknown code page " + IntToStr(code_page));
  return code_page == 0 ? SystemCodePage() : static_cast<std::uint32_t>(code_page);
}

std::string_view TrimBytes(std::string_view bytes) {
  const auto is_blank = [](char byte) { return static_cast<unsigned char>(byte) <= 32; };
  while (!bytes.empty() && is_blank(bytes.front())) bytes.remove_prefix(1);
  while (!bytes.empty() && is_blank(bytes.back())) bytes.remove_suffix(1);
  return bytes;
}

bool IsHighSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}

// The most units at the start of `text`, no surrogate pair cut, whose bytes are not more than the
// units of all of it. A search, since some pages have characters of any length and shift states.
AnsiString LongestFitting(StringView text, std::uint32_t page) {
  std::size_t fits = 0;
  std::size_t too_many = text.size() + 1;
  AnsiString longest;
  while (too_many - fits > 1) {
    const std::size_t middle = fits + (too_many - fits) / 2;
    const bool cuts_pair = IsHighSurrogate(text[middle - 1]);
    AnsiString bytes =
        ToCodePage(text.substr(0, middle - (cuts_pair ? 1 : 0)), page, CodePageFit::kBest);
    if (bytes.size() > text.size()) {
      too_many = middle;
    } else {
      fits = middle;
      longest = std::move(bytes);
    }
  }
  return longest;
}

}  // namespace

std::int32_t GetCodePageFromLocale(std::uint32_t Locale) {
  return platform::LocaleCodePage(Locale);
}

String AnsiToUnicode(std::string_view Text, std::uint32_t CodePage) {
  const std::string_view trimmed = TrimBytes(Text);
  String text =
      FromCodePage(trimmed, CodePage == 0 ? SystemCodePage() : CodePage, LooseBytes::kKept);
  text.resize(trimmed.size());
  return text;
}

AnsiString Utf8ToCodePage(std::string_view Utf8Text, std::int32_t CodePage) {
  const std::uint32_t page = PageOf(CodePage);
  const String text = FromUtf8(Utf8Text);
  AnsiString bytes = ToCodePage(text, page, CodePageFit::kBest);
  if (bytes.size() > text.size()) bytes = LongestFitting(text, page);
  bytes.resize(text.size());
  return bytes;
}

bool NotInCodePage(StringView Text, std::int32_t CodePage) {
  return !FitsCodePage(Text, PageOf(CodePage));
}

}  // namespace zentavo
