#include "zentavo/framework/digits.h"

namespace zentavo::digits {

namespace {

constexpr std::array<char16_t, 4002> MakeThrees() {
  std::array<char16_t, 4002> threes{};
  for (std::size_t number = 0; number < 1000; ++number) {
    threes[number * 4] = static_cast<char16_t>(u'0' + number / 100);
    threes[number * 4 + 1] = static_cast<char16_t>(u'0' + number / 10 % 10);
    threes[number * 4 + 2] = static_cast<char16_t>(u'0' + number % 10);
  }
  return threes;
}

}  // namespace

constexpr std::array<char16_t, 4002> kThrees = MakeThrees();

char16_t* WriteLarge(char16_t* out, std::uint64_t value) {
  out = WriteWhole(out, value / 1000000);
  return WriteSix(out, static_cast<std::uint32_t>(value % 1000000));
}

}  // namespace zentavo::digits
