#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

#include "zentavo/framework/ascii_blocks.h"
#include "zentavo/framework/text.h"

namespace zentavo {

namespace {

using ascii_blocks::BlockHalf;
using ascii_blocks::kMixedRun;
using ascii_blocks::WideHalf;

static_assert(std::endian::native == std::endian::little);

constexpr char32_t kReplacement = 0xFFFD;

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

bool IsTrail(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// How many of the eight bytes, the first in the lowest bits, come before the first that has its top
// bit set. Without a branch: a zero is never counted.
std::size_t ClearBytes(std::uint64_t bytes) {
  const std::uint64_t marks = (bytes & 0x8080808080808080U) >> 7 | std::uint64_t{1} << 63;
  return (static_cast<std::size_t>(std::countr_zero(marks)) + 1) / 8;
}

// The following steps read what the bytes at `from` begin with, as units, and return how many that
// are. They write whole registers and move on by as much as was valid: branches would be
// mispredicted wherever a text changes its script.
std::size_t ReadAscii(const char* from, char16_t* out) {
  BlockHalf bytes;
  std::memcpy(&bytes, from, sizeof bytes);
  const auto units = __builtin_convertvector(bytes, WideHalf);
  std::memcpy(out, &units, sizeof units);
  return ClearBytes(std::bit_cast<std::uint64_t>(bytes));
}

std::size_t ReadPairs(const char* from, char16_t* out) {
  WideHalf pairs;
  std::memcpy(&pairs, from, sizeof pairs);
  const WideHalf units = (pairs & 0x1F) << 6 | (pairs >> 8 & 0x3F);
  std::memcpy(out, &units, sizeof units);
  const auto wrong = ((pairs & 0xC0E0) != 0x80C0) | ((pairs & 0x1E) == 0);  // or overlong
  return ClearBytes(std::bit_cast<std::uint64_t>(__builtin_convertvector(wrong, BlockHalf)));
}

// A step writes up to so many units beyond what it means.
constexpr std::size_t kSlack = 8;

// What is enough for the units of `bytes` where no trail byte stands alone. Counts in single bytes
// for some way, which takes a sixteenth of the registers.
std::size_t Utf16Room(std::string_view bytes) {
  constexpr std::size_t kWay = 64;
  std::size_t units = kSlack;
  for (std::size_t start = 0; start < bytes.size(); start += kWay) {
    unsigned char count = 0;
    for (const char byte : bytes.substr(start, kWay)) {
      const int more = (IsTrail(byte) ? 0 : 1) + (static_cast<unsigned char>(byte) >= 0xF0 ? 1 : 0);
      count = static_cast<unsigned char>(count + more);
    }
    units += count;
  }
  return units;
}

// Reads some kMixedRun bytes of well-formed sequences of one and two bytes from `index` on, to some
// way before the end.
char16_t* ReadShort(std::string_view bytes, std::size_t& index, char16_t* out) {
  constexpr std::size_t kStep = 8 + 16;
  std::size_t at = index;
  const std::size_t till =
      bytes.size() < kStep ? 0 : std::min(bytes.size() - kStep + 1, at + kMixedRun);
  std::size_t done = 1;
  while (done > 0 && at < till) {
    const std::size_t ascii = ReadAscii(bytes.data() + at, out);
    const std::size_t pairs = ReadPairs(bytes.data() + at + ascii, out + ascii);
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

void AppendFromUtf8(String& out, std::string_view bytes) {
  std::size_t used = out.size();
  out.resize(used + Utf16Room(bytes));
  bool room_for_all = false;
  char16_t* end = out.data() + used;
  for (std::size_t index = 0; index < bytes.size();) {
    end = ascii_blocks::CopyBlocks(bytes, index, end);
    const std::size_t start = index;
    end = ReadShort(bytes, index, end);
    if (index - start >= kMixedRun) continue;
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

}  // namespace zentavo
