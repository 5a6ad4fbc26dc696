#include "zentavo/json/plain_text.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zentavo::json_internal {

namespace {

constexpr std::ptrdiff_t kBlock = 8;  // units looked at together

bool EndsRun(char16_t unit, char16_t quote) {
  return unit == quote || unit == u'\\' || unit == u'\n' || unit == u'\r';
}

// The number of the first byte, in memory, of those marked by their highest bits.
std::size_t FirstMarked(std::uint64_t marks) {
  const int bits = std::endian::native == std::endian::little ? std::countr_zero(marks)
                                                              : std::countl_zero(marks);
  return static_cast<std::size_t>(bits) / 8;
}

// The first of eight units that can end a run; kBlock when none does. The loop is one for vectors.
std::size_t FirstEnd(const char16_t* units, char16_t quote) {
  std::uint16_t ends[kBlock];
  for (std::size_t index = 0; index < kBlock; ++index) {
    const char16_t unit = units[index];
    const bool end = (unit == quote) | (unit == u'\\') | (unit == u'\n') | (unit == u'\r');
    ends[index] = end ? 0xFFFF : 0;
  }
  std::uint64_t halves[2];
  std::memcpy(halves, ends, sizeof halves);
  if ((halves[0] | halves[1]) == 0) return kBlock;
  return halves[0] != 0 ? FirstMarked(halves[0]) / 2 : kBlock / 2 + FirstMarked(halves[1]) / 2;
}

// The highest bit of each byte that is zero, and perhaps of bytes behind the first such one.
std::uint64_t ZeroBytes(std::uint64_t bytes) {
  return (bytes - 0x0101010101010101u) & ~bytes & 0x8080808080808080u;
}

std::uint64_t Repeated(char16_t unit) {
  return 0x0101010101010101u * static_cast<unsigned char>(unit);
}

// The first of eight bytes that can end a run or is not ASCII; kBlock when none is.
std::size_t FirstSpecial(const char* bytes, char16_t quote) {
  std::uint64_t eight;
  std::memcpy(&eight, bytes, sizeof eight);
  const std::uint64_t marks = (eight & 0x8080808080808080u) | ZeroBytes(eight ^ Repeated(quote)) |
                              ZeroBytes(eight ^ Repeated(u'\\')) |
                              ZeroBytes(eight ^ Repeated(u'\n')) |
                              ZeroBytes(eight ^ Repeated(u'\r'));
  return marks == 0 ? kBlock : FirstMarked(marks);
}

bool IsPair(const char* here, const char* end) {
  const auto lead = static_cast<unsigned char>(*here);
  return lead >= 0xC2 && lead <= 0xDF && here + 1 != end && (here[1] & 0xC0) == 0x80;
}

}  // namespace

Copied<char16_t> CopyPlain(const char16_t* here, const char16_t* end, char16_t quote, char16_t* out,
                           const char16_t* limit) {
  while (end - here >= kBlock && limit - out >= kBlock) {
    std::memcpy(out, here, kBlock * sizeof(char16_t));
    const std::size_t done = FirstEnd(here, quote);
    here += done;
    out += done;
    if (done < kBlock) return {here, out};
  }
  while (here != end && out != limit && !EndsRun(*here, quote)) *out++ = *here++;
  return {here, out};
}

Copied<char> CopyPlain(const char* here, const char* end, char16_t quote, char16_t* out,
                       const char16_t* limit) {
  for (;;) {
    while (end - here >= kBlock && limit - out >= kBlock) {
      for (std::ptrdiff_t index = 0; index < kBlock; ++index) {
        out[index] = static_cast<unsigned char>(here[index]);
      }
      const std::size_t done = FirstSpecial(here, quote);
      here += done;
      out += done;
      if (done < kBlock) break;
    }
    while (here != end && out != limit && static_cast<unsigned char>(*here) < 0x80) {
      if (EndsRun(static_cast<char16_t>(*here), quote)) return {here, out};
      *out++ = static_cast<char16_t>(*here++);
    }
    if (here == end || out == limit || !IsPair(here, end)) return {here, out};
    do {
      *out++ = static_cast<char16_t>(((*here & 0x1F) << 6) | (here[1] & 0x3F));
      here += 2;
    } while (here != end && out != limit && IsPair(here, end));
  }
}

}  // namespace zentavo::json_internal
