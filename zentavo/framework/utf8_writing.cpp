#include <algorithm>
#include <cstdint>

#include "zentavo/framework/ascii_blocks.h"
#include "zentavo/framework/text.h"

namespace zentavo {

namespace {

using ascii_blocks::kMixedRun;

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}
bool IsLowSurrogate(char16_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}

// The code point at `index`, which moves behind it; U+FFFD for a lone surrogate.
char32_t NextCodePoint(StringView text, std::size_t& index) {
  const char16_t unit = text[index++];
  if ((unit & 0xF800) != 0xD800) return unit;
  if (IsHighSurrogate(unit) && index < text.size() && IsLowSurrogate(text[index])) {
    return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{text[index++]} - 0xDC00);
  }
  return kReplacement;
}

char* WriteUtf8(char* out, char32_t code_point) {
  if (code_point < 0x800) {
    *out++ = static_cast<char>(0xC0 | (code_point >> 6));
  } else {
    if (code_point < 0x10000) {
      *out++ = static_cast<char>(0xE0 | (code_point >> 12));
    } else {
      *out++ = static_cast<char>(0xF0 | (code_point >> 18));
      *out++ = static_cast<char>(0x80 | ((code_point >> 12) & 0x3F));
    }
    *out++ = static_cast<char>(0x80 | ((code_point >> 6) & 0x3F));
  }
  *out++ = static_cast<char>(0x80 | (code_point & 0x3F));
  return out;
}

// How many units at the start of `text` are no surrogates.
std::size_t RunWithoutSurrogates(StringView text) {
  constexpr std::size_t kUnits = 32;
  std::size_t index = 0;
  while (index + kUnits <= text.size()) {
    unsigned any = 0;
    for (std::size_t i = 0; i < kUnits; ++i) any |= (text[index + i] & 0xF800) == 0xD800;
    if (any != 0) break;
    index += kUnits;
  }
  while (index < text.size() && (text[index] & 0xF800) != 0xD800) ++index;
  return index;
}

// What is enough for WriteShort and WriteOne over all of `text`: a surrogate counts as three bytes,
// and WriteShort writes one beyond what it means.
std::size_t Utf8Room(StringView text) {
  std::size_t beyond_ascii = 0;
  std::size_t three_bytes = 0;
  for (const char16_t unit : text) {
    beyond_ascii += unit >= 0x80;
    three_bytes += unit >= 0x800;
  }
  return text.size() + beyond_ascii + three_bytes + 1;
}

// Writes up to kMixedRun units from `index` on that take one or two bytes, most of European texts,
// and returns the end of what was written. Two bytes are always written, of which the next unit
// overwrites what was not meant: branches would be mispredicted wherever a text changes its script.
char* WriteShort(StringView text, std::size_t& index, char* out) {
  std::size_t at = index;
  const std::size_t till = std::min(text.size(), at + kMixedRun);
  for (; at < till && text[at] < 0x800; ++at) {
    const unsigned unit = text[at];
    const unsigned is_pair = (unit + 0x780) >> 11;  // 1 from 0x80 on
    const unsigned lead = 0xC0 | unit >> 6;
    out[0] = static_cast<char>(unit ^ ((unit ^ lead) & (0U - is_pair)));
    out[1] = static_cast<char>(0x80 | (unit & 0x3F));
    out += 1 + is_pair;
  }
  index = at;
  return out;
}

char* WriteOne(StringView text, std::size_t& index, char* out) {
  if (text[index] >= 0x80) return WriteUtf8(out, NextCodePoint(text, index));
  *out++ = static_cast<char>(text[index++]);
  return out;
}

}  // namespace

void AppendUtf8(AnsiString& out, StringView text) {
  const std::size_t old_size = out.size();
  out.resize(old_size + Utf8Room(text));
  char* end = out.data() + old_size;
  for (std::size_t index = 0; index < text.size();) {
    end = ascii_blocks::CopyBlocks(text, index, end);
    const std::size_t start = index;
    end = WriteShort(text, index, end);
    if (index < text.size() && index - start < kMixedRun) end = WriteOne(text, index, end);
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
}

AnsiString ToUtf8(StringView text) {
  AnsiString out;
  AppendUtf8(out, text);
  return out;
}

bool HasLoneSurrogate(StringView text) {
  for (std::size_t index = 0; index < text.size();) {
    index += RunWithoutSurrogates(text.substr(index));
    if (index < text.size() && NextCodePoint(text, index) == kReplacement) return true;
  }
  return false;
}

}  // namespace zentavo
