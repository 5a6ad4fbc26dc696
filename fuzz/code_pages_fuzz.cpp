// Any bytes in any code page, and any text into one: lengths are those promised, what a page has a
// place for comes back, and UTF-8 is always valid.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "zentavo/framework/code_page.h"
#include "zentavo/genlib/code_pages.h"

using namespace zentavo;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

constexpr std::int32_t kPages[] = {437,   737,   850,   866,   869,   874,   932,   936,
                                   949,   950,   1250,  1252,  1253,  1255,  1257,  10000,
                                   20127, 20866, 21866, 28596, 28597, 54936, 65000, 65001};

void CheckBytes(std::string_view bytes, std::uint32_t page) {
  Require(AnsiToUnicode(bytes, page).size() <= bytes.size());
  const String text = FromCodePage(bytes, page);
  FromCodePage(bytes, page, LooseBytes::kKept);
  // What was read has a place, unless it stands for what could not be read.
  if (page != 65000 && page < 50000 && text.find(u'\uFFFD') == String::npos) {
    Require(FromCodePage(ToCodePage(text, page), page) == text);
  }
}

void CheckText(StringView text, std::uint32_t page) {
  const bool fits = FitsCodePage(text, page);
  const AnsiString exact = ToCodePage(text, page);
  if (fits && page != 65000) Require(FromCodePage(exact, page, LooseBytes::kKept) == text);
  ToCodePage(text, page, CodePageFit::kBest);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::int32_t page = kPages[data[0] % std::size(kPages)];
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  CheckBytes(bytes, static_cast<std::uint32_t>(page));
  const String text = FromUtf8(bytes);
  Require(Utf8ToCodePage(bytes, page).size() == text.size());
  CheckText(text, static_cast<std::uint32_t>(page));
  String units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                   static_cast<unsigned char>(bytes[i + 1]) << 8);
  }
  CheckText(units, static_cast<std::uint32_t>(page));
  Require(IsValidUtf8(ToUtf8(units)));
  return 0;
}
