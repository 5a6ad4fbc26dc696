#include <algorithm>
#include <cstring>

#include "zentavo/framework/text.h"

namespace zentavo {

namespace {

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

struct Lead {
  int trail_count;          // 0: no valid lead byte
  unsigned char low, high;  // what the first trail byte may be
  char32_t bits;
};

Lead ReadLead(unsigned char byte) {
  if (byte < 0xC2 || byte > 0xF4) return {0, 0, 0, 0};
  if (byte < 0xE0) return {1, 0x80, 0xBF, byte & 0x1Fu};
  if (byte < 0xF0) {
    return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF), byte & 0x0Fu};
  }
  return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
          static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF), byte & 0x07u};
}

// Reads one sequence that begins with a byte above 0x7F; `valid` tells whether it was well-formed.
// An ill-formed one is as long as its longest correct beginning, at least one byte.
char32_t NextSequence(std::string_view bytes, std::size_t& index, bool& valid) {
  const Lead lead = ReadLead(static_cast<unsigned char>(bytes[index++]));
  char32_t code_point = lead.bits;
  valid = lead.trail_count > 0;
  for (int trail = 0; trail < lead.trail_count; ++trail) {
    const auto byte = index < bytes.size() ? static_cast<unsigned char>(bytes[index])
                                           : static_cast<unsigned char>(0);
    const unsigned char low = trail == 0 ? lead.low : 0x80;
    const unsigned char high = trail == 0 ? lead.high : 0xBF;
    if (byte < low || byte > high) {
      valid = false;
      break;
    }
    code_point = (code_point << 6) | (byte & 0x3Fu);
    ++index;
  }
  return valid ? code_point : kReplacement;
}

// How many bytes from `index` on are ASCII.
std::size_t AsciiRun(std::string_view bytes, std::size_t index) {
  const std::size_t start = index;
  while (index + 8 <= bytes.size()) {
    std::uint64_t eight;
    std::memcpy(&eight, bytes.data() + index, 8);
    if ((eight & 0x8080808080808080u) != 0) break;
    index += 8;
  }
  while (index < bytes.size() && static_cast<unsigned char>(bytes[index]) < 0x80) ++index;
  return index - start;
}

// How many units at the start of `text` are ASCII.
std::size_t AsciiRun(StringView text) {
  constexpr std::size_t kBlock = 16;
  std::size_t index = 0;
  while (index + kBlock <= text.size()) {
    unsigned all = 0;
    for (std::size_t i = 0; i < kBlock; ++i) all |= text[index + i];
    if (all >= 0x80) break;
    index += kBlock;
  }
  while (index < text.size() && text[index] < 0x80) ++index;
  return index;
}

bool IsTrail(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Reads the well-formed sequences of two bytes from `index` on, most of what is not ASCII in
// European texts, and returns the end of what was written.
char16_t* ReadPairs(std::string_view bytes, std::size_t& index, char16_t* out) {
  while (index + 1 < bytes.size()) {
    const auto lead = static_cast<unsigned char>(bytes[index]);
    if (lead < 0xC2 || lead > 0xDF || !IsTrail(bytes[index + 1])) break;
    *out++ = static_cast<char16_t>(((lead & 0x1Fu) << 6) |
                                   (static_cast<unsigned char>(bytes[index + 1]) & 0x3Fu));
    index += 2;
  }
  return out;
}

}  // namespace

void AppendUtf8(AnsiString& out, StringView text) {
  const std::size_t old_size = out.size();
  const std::size_t ascii = AsciiRun(text);
  out.resize(old_size + ascii + (text.size() - ascii) * 3);
  char* end = out.data() + old_size;
  for (std::size_t index = 0; index < ascii; ++index) *end++ = static_cast<char>(text[index]);
  for (std::size_t index = ascii; index < text.size();) {
    if (text[index] < 0x80) {
      *end++ = static_cast<char>(text[index++]);
    } else {
      end = WriteUtf8(end, NextCodePoint(text, index));
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
}

AnsiString ToUtf8(StringView text) {
  AnsiString out;
  AppendUtf8(out, text);
  return out;
}

void AppendFromUtf8(String& out, std::string_view bytes) {
  const std::size_t old_size = out.size();
  out.resize(old_size + bytes.size());  // no sequence gives more units than it has bytes
  char16_t* end = out.data() + old_size;
  for (std::size_t index = 0; index < bytes.size();) {
    const std::size_t run = AsciiRun(bytes, index);
    end = std::copy_n(bytes.data() + index, run, end);
    index += run;
    end = ReadPairs(bytes, index, end);
    if (index == bytes.size() || static_cast<unsigned char>(bytes[index]) < 0x80) continue;
    bool valid;
    const char32_t code_point = NextSequence(bytes, index, valid);
    if (code_point >= 0x10000) {
      *end++ = static_cast<char16_t>(0xD7C0 + (code_point >> 10));
      *end++ = static_cast<char16_t>(0xDC00 + (code_point & 0x3FF));
    } else {
      *end++ = static_cast<char16_t>(code_point);
    }
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
}

String FromUtf8(std::string_view bytes) {
  String out;
  AppendFromUtf8(out, bytes);
  return out;
}

bool IsValidUtf8(std::string_view bytes) {
  for (std::size_t index = 0; index < bytes.size();) {
    index += AsciiRun(bytes, index);
    bool valid = true;
    if (index < bytes.size()) NextSequence(bytes, index, valid);
    if (!valid) return false;
  }
  return true;
}

}  // namespace zentavo
