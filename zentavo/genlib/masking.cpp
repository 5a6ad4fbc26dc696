#include "zentavo/genlib/masking.h"

#include <random>

#include "zentavo/foundation/errors.h"

namespace zentavo {

namespace {

constexpr char kMarker = '#';
constexpr int kBase = 64;  // the character of 0
constexpr std::string_view kMask = "QuillarMaskingLeafTableOrderQ7x2";
static_assert(kMask.size() == kMaskPositions);

void CheckStart(int start) {
  if (start < 1 || start > kMaskPositions) {
    ZentavoErrorFmt(u"Mask position %d is not in 1..32", {start});
  }
}

unsigned Byte(char character) {
  return static_cast<unsigned char>(character);
}

// The mask's bytes from a position on, round and round.
class MaskBytes {
 public:
  explicit MaskBytes(int start) : at_(static_cast<std::size_t>(start) - 1) {}

  unsigned Next() {
    const unsigned byte = Byte(kMask[at_]);
    at_ = (at_ + 1) % kMask.size();
    return byte;
  }

 private:
  std::size_t at_;
};

// Bits that come and go in units of different sizes, least significant first.
class BitQueue {
 public:
  void Put(unsigned bits, int count) {
    bits_ |= bits << count_;
    count_ += count;
  }
  unsigned Take(int count) {
    const unsigned taken = bits_ & ((1U << count) - 1);
    bits_ >>= count;
    count_ -= count;
    return taken;
  }
  int Count() const { return count_; }

 private:
  unsigned bits_ = 0;
  int count_ = 0;
};

int RandomStart() {
  thread_local std::minstd_rand generator{std::random_device{}()};
  return std::uniform_int_distribution<int>(1, kMaskPositions)(generator);
}

}  // namespace

AnsiString EncodeStr(std::string_view Text) {
  return EncodeStr(Text, RandomStart());
}

AnsiString EncodeStr(std::string_view Text, int Start) {
  CheckStart(Start);
  if (Text.empty()) return {};
  AnsiString out;
  out.reserve(2 + (Text.size() * 8 + 5) / 6);
  out += kMarker;
  out += static_cast<char>(kBase + Start);
  MaskBytes mask(Start);
  BitQueue bits;
  const auto put_unit = [&] { out += static_cast<char>(kBase + bits.Take(6)); };
  for (const char character : Text) {
    bits.Put(Byte(character) ^ mask.Next(), 8);
    while (bits.Count() >= 6) put_unit();
  }
  if (bits.Count() > 0) put_unit();
  return out;
}

AnsiString DecodeStr(std::string_view Text) {
  if (!Text.starts_with(kMarker)) return AnsiString(Text);
  const int start = Text.size() > 1 ? static_cast<int>(Byte(Text[1])) - kBase : 0;
  CheckStart(start);
  Text.remove_prefix(2);
  AnsiString out;
  out.reserve(Text.size() * 6 / 8);
  MaskBytes mask(start);
  BitQueue bits;
  for (const char character : Text) {
    bits.Put((Byte(character) - kBase) & 63U, 6);
    if (bits.Count() >= 8) out += static_cast<char>(bits.Take(8) ^ mask.Next());
  }
  return out;
}

std::int32_t HashForString(StringView Text) {
  std::uint32_t hash = 0;
  for (std::size_t i = Text.size(); i-- > 0;) hash = hash * 37 + Text[i];
  return static_cast<std::int32_t>(hash);
}

}  // namespace zentavo
