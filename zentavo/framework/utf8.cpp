#include <algorithm>
#include <bit>
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

// How many units at the start of `text` are no surrogates.
std::size_t RunWithoutSurrogates(StringView text) {
  constexpr std::size_t kBlock = 32;
  std::size_t index = 0;
  while (index + kBlock <= text.size()) {
    unsigned any = 0;
    for (std::size_t i = 0; i < kBlock; ++i) any |= (text[index + i] & 0xF800) == 0xD800;
    if (any != 0) break;
    index += kBlock;
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

// Writes the units from `index` on that take one or two bytes, most of European texts, and returns
// the end of what was written. Two bytes are always written, of which the next unit overwrites what
// was not meant: branches would be mispredicted wherever a text changes its script.
char* WriteShort(StringView text, std::size_t& index, char* out) {
  std::size_t at = index;
  for (; at < text.size() && text[at] < 0x800; ++at) {
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

// Eight bytes, or four lanes of two, in one register, the first in its lowest bits. Steps over them
// write whole registers and move on by as much as was valid, for the same reason as above.
using Lanes = std::uint64_t;
static_assert(std::endian::native == std::endian::little);

constexpr Lanes InEachLane(std::uint16_t value) {
  return Lanes{value} * 0x0001000100010001U;
}
constexpr Lanes kTopBits = InEachLane(0x8080);

Lanes LoadLanes(const char* from) {
  Lanes lanes;
  std::memcpy(&lanes, from, sizeof lanes);
  return lanes;
}

bool IsTrail(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// The top bit of each lane that is not 0; no lane is above 0x8000.
Lanes NotZero(Lanes lanes) {
  return (lanes + InEachLane(0x7FFF)) & InEachLane(0x8000);
}

// How many fields of `field_bits` have their top bit clear before the first that has it set.
// Without a branch: a zero is never counted.
std::size_t ClearFields(Lanes marks, unsigned field_bits) {
  const Lanes low_bits = marks >> (field_bits - 1) | Lanes{1} << 63;
  return (static_cast<std::size_t>(std::countr_zero(low_bits)) + 1) / field_bits;
}

void WidenFour(std::uint32_t bytes, char16_t* out) {
  const Lanes halves = (Lanes{bytes} | Lanes{bytes} << 16) & 0x0000FFFF0000FFFFU;
  const Lanes units = (halves | halves << 8) & InEachLane(0xFF);
  std::memcpy(out, &units, sizeof units);
}

// Each step reads what the bytes at `from` begin with, as units, and returns how many that are.
std::size_t ReadAscii(const char* from, char16_t* out) {
  const Lanes bytes = LoadLanes(from);
  WidenFour(static_cast<std::uint32_t>(bytes), out);
  WidenFour(static_cast<std::uint32_t>(bytes >> 32), out + 4);
  return ClearFields(bytes & kTopBits, 8);
}

std::size_t ReadFourPairs(const char* from, char16_t* out) {
  const Lanes pairs = LoadLanes(from);
  const Lanes units = (pairs & InEachLane(0x1F)) << 6 | (pairs >> 8 & InEachLane(0x3F));
  std::memcpy(out, &units, sizeof units);
  const Lanes wrong_bits = (pairs & InEachLane(0xC0E0)) ^ InEachLane(0x80C0);
  const Lanes overlong = ~NotZero(pairs & InEachLane(0x1E)) & InEachLane(0x8000);
  return ClearFields(NotZero(wrong_bits >> 1) | overlong, 16);
}

std::size_t ReadEightPairs(const char* from, char16_t* out) {
  const std::size_t first = ReadFourPairs(from, out);
  const std::size_t second = ReadFourPairs(from + 8, out + 4);
  return first + (second & (0 - (first >> 2)));  // the second counts behind four of the first
}

// A step writes up to so many units beyond what it means.
constexpr std::size_t kSlack = 8;

// What is enough for the units of `bytes` where no trail byte stands alone.
std::size_t Utf16Room(std::string_view bytes) {
  std::size_t units = kSlack;
  for (const char byte : bytes) {
    units += !IsTrail(byte);
    units += static_cast<unsigned char>(byte) >= 0xF0;
  }
  return units;
}

// Reads well-formed sequences of one and two bytes from `index` on, to some way before the end.
char16_t* ReadShort(std::string_view bytes, std::size_t& index, char16_t* out) {
  constexpr std::size_t kStep = 8 + 16;
  std::size_t at = index;
  std::size_t done = 1;
  while (done > 0 && at + kStep <= bytes.size()) {
    const std::size_t ascii = ReadAscii(bytes.data() + at, out);
    const std::size_t pairs = ReadEightPairs(bytes.data() + at + ascii, out + ascii);
    at += ascii + 2 * pairs;
    done = ascii + pairs;
    out += done;
  }
  index = at;
  return out;
}

char16_t* ReadOne(std::string_view bytes, std::size_t& index, char16_t* out) {
  if (static_cast<unsigned char>(bytes[index]) < 0x80) {
    *out++ = static_cast<unsigned char>(bytes[index++]);
    return out;
  }
  bool valid;
  const char32_t code_point = NextSequence(bytes, index, valid);
  if (code_point >= 0x10000) {
    *out++ = static_cast<char16_t>(0xD7C0 + (code_point >> 10));
    *out++ = static_cast<char16_t>(0xDC00 + (code_point & 0x3FF));
  } else {
    *out++ = static_cast<char16_t>(code_point);
  }
  return out;
}

}  // namespace

void AppendUtf8(AnsiString& out, StringView text) {
  const std::size_t old_size = out.size();
  out.resize(old_size + Utf8Room(text));
  char* end = out.data() + old_size;
  for (std::size_t index = 0; index < text.size();) {
    end = WriteShort(text, index, end);
    if (index < text.size()) end = WriteOne(text, index, end);
  }
  out.resize(static_cast<std::size_t>(end - out.data()));
}

AnsiString ToUtf8(StringView text) {
  AnsiString out;
  AppendUtf8(out, text);
  return out;
}

void AppendFromUtf8(String& out, std::string_view bytes) {
  std::size_t used = out.size();
  out.resize(used + Utf16Room(bytes));
  bool room_for_all = false;
  char16_t* end = out.data() + used;
  for (std::size_t index = 0; index < bytes.size();) {
    end = ReadShort(bytes, index, end);
    if (index == bytes.size()) break;
    if (!room_for_all && IsTrail(bytes[index])) {
      used = static_cast<std::size_t>(end - out.data());
      out.resize(used + (bytes.size() - index) + kSlack);  // no byte gives more than a unit
      end = out.data() + used;
      room_for_all = true;
    }
    end = ReadOne(bytes, index, end);
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

bool HasLoneSurrogate(StringView text) {
  for (std::size_t index = 0; index < text.size();) {
    index += RunWithoutSurrogates(text.substr(index));
    if (index < text.size() && NextCodePoint(text, index) == kReplacement) return true;
  }
  return false;
}

}  // namespace zentavo
