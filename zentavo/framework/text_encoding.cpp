#include "zentavo/framework/text_encoding.h"

#include <bit>

#include "zentavo/framework/code_page.h"

namespace zentavo {

namespace {

constexpr std::uint32_t kSystem = 0;
constexpr std::uint32_t kUtf16LE = 1200;
constexpr std::uint32_t kUtf16BE = 1201;
constexpr std::uint32_t kUtf8 = 65001;
constexpr char16_t kReplacement = u'\uFFFD';

char16_t UnitOf(char low, char high) {
  return static_cast<char16_t>(static_cast<unsigned char>(low) | static_cast<unsigned char>(high)
                                                                     << 8);
}

// A byte that is left over at the end becomes U+FFFD.
bool DecodeUtf16(std::string_view bytes, std::endian order, String& text) {
  text.reserve(text.size() + bytes.size() / 2 + 1);
  const std::size_t low = order == std::endian::little ? 0 : 1;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text += UnitOf(bytes[i + low], bytes[i + 1 - low]);
  }
  const bool whole = bytes.size() % 2 == 0;
  if (!whole) text += kReplacement;
  return whole;
}

AnsiString EncodeUtf16(StringView text, std::endian order) {
  AnsiString bytes;
  bytes.reserve(text.size() * 2);
  for (const char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += order == std::endian::little ? low : high;
    bytes += order == std::endian::little ? high : low;
  }
  return bytes;
}

// Goes through all of the text, as it mostly must, without stopping: that is fastest.
bool ShowsReplacement(StringView text) {
  unsigned shown = 0;
  for (const char16_t unit : text) shown |= unit == kReplacement ? 1U : 0U;
  return shown != 0;
}

bool DecodeUtf8(std::string_view bytes, String& text) {
  const std::size_t start = text.size();
  AppendFromUtf8(text, bytes);
  // Only a text that shows the replacement needs the second look.
  return !ShowsReplacement(StringView(text).substr(start)) || IsValidUtf8(bytes);
}

}  // namespace

TEncoding::TEncoding(std::uint32_t code_page) : code_page_(code_page) {
  if (code_page != kUtf16LE && code_page != kUtf16BE) ToCodePage({}, code_page);
}

TEncoding TEncoding::Utf8() {
  return TEncoding(Known{kUtf8});
}
TEncoding TEncoding::Utf16LE() {
  return TEncoding(Known{kUtf16LE});
}
TEncoding TEncoding::Utf16BE() {
  return TEncoding(Known{kUtf16BE});
}
TEncoding TEncoding::System() {
  return TEncoding(Known{kSystem});
}

std::optional<TEncoding> TEncoding::FromMark(std::string_view bytes) {
  for (const TEncoding encoding : {Utf8(), Utf16LE(), Utf16BE()}) {
    if (bytes.starts_with(encoding.Mark())) return encoding;
  }
  return std::nullopt;
}

std::string_view TEncoding::Mark() const {
  switch (code_page_) {
    case kUtf8: return "\xEF\xBB\xBF";
    case kUtf16LE: return "\xFF\xFE";
    case kUtf16BE: return "\xFE\xFF";
    default: return {};
  }
}

bool TEncoding::Decode(std::string_view bytes, String& text) const {
  const std::uint32_t code_page = CodePage();
  switch (code_page) {
    case kUtf8: return DecodeUtf8(bytes, text);
    case kUtf16LE: return DecodeUtf16(bytes, std::endian::little, text);
    case kUtf16BE: return DecodeUtf16(bytes, std::endian::big, text);
    default: break;
  }
  const String decoded = FromCodePage(bytes, code_page);
  text += decoded;
  return !ShowsReplacement(decoded);
}

AnsiString TEncoding::Encode(StringView text) const {
  const std::uint32_t code_page = CodePage();
  switch (code_page) {
    case kUtf8: return ToUtf8(text);
    case kUtf16LE: return EncodeUtf16(text, std::endian::little);
    case kUtf16BE: return EncodeUtf16(text, std::endian::big);
    default: return ToCodePage(text, code_page);
  }
}

std::uint32_t TEncoding::CodePage() const {
  return code_page_ == kSystem ? SystemCodePage() : code_page_;
}

}  // namespace zentavo
