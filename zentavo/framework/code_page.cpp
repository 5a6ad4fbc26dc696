#include "zentavo/framework/code_page.h"

#include <atomic>
#include <optional>
#include <utility>

#include "zentavo/framework/exception.h"
#include "zentavo/platform/code_pages.h"

namespace zentavo {

namespace {

constinit std::atomic<std::uint32_t> system_code_page{0};  // 0: the platform's

[[noreturn]] void RaiseUnknown(std::uint32_t code_page) {
  throw EConvertError(u"Unknown code page " + FromUtf8(std::to_string(code_page)));
}

}  // namespace

std::uint32_t SystemCodePage() {
  const std::uint32_t set = system_code_page;
  return set != 0 ? set : platform::DefaultCodePage();
}

void SetSystemCodePage(std::uint32_t code_page) {
  if (code_page != 0 && !platform::CodePageKnown(code_page)) RaiseUnknown(code_page);
  system_code_page = code_page;
}

AnsiString ToSystemAnsi(StringView text) {
  return ToCodePage(text, SystemCodePage());
}

String FromSystemAnsi(std::string_view bytes) {
  return FromCodePage(bytes, SystemCodePage());
}

AnsiString ToCodePage(StringView text, std::uint32_t code_page, CodePageFit fit) {
  if (code_page == platform::kCodePageUtf8) return ToUtf8(text);
  std::optional<std::string> bytes = platform::EncodeCodePage(text, code_page, fit);
  if (!bytes) RaiseUnknown(code_page);
  return std::move(*bytes);
}

String FromCodePage(std::string_view bytes, std::uint32_t code_page, LooseBytes loose) {
  if (code_page == platform::kCodePageUtf8) return FromUtf8(bytes);
  std::optional<std::u16string> text = platform::DecodeCodePage(bytes, code_page, loose);
  if (!text) RaiseUnknown(code_page);
  return std::move(*text);
}

bool FitsCodePage(StringView text, std::uint32_t code_page) {
  if (code_page == platform::kCodePageUtf8) return !HasLoneSurrogate(text);
  const std::optional<bool> fits = platform::FitsCodePage(text, code_page);
  if (!fits) RaiseUnknown(code_page);
  return *fits;
}

}  // namespace zentavo
