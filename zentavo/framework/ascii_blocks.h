// ASCII in blocks of units, which is what files of a program's own mostly hold.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace zentavo::ascii_blocks {

inline constexpr std::size_t kBlock = 16;
using BlockHalf = unsigned char __attribute__((vector_size(kBlock / 2)));
using WideHalf = std::uint16_t __attribute__((vector_size(kBlock)));

inline bool IsAsciiBlock(const char* from) {
  std::array<std::uint64_t, 2> words;
  std::memcpy(words.data(), from, sizeof words);
  return ((words[0] | words[1]) & 0x8080808080808080U) == 0;
}

inline bool IsAsciiBlock(const char16_t* from) {
  std::array<std::uint64_t, 4> words;
  std::memcpy(words.data(), from, sizeof words);
  return ((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80U) == 0;
}

// Copies kBlock ASCII units from one width to the other.
template <typename FromHalf, typename ToHalf, typename From, typename To>
void CopyBlock(const From* from, To* to) {
  for (std::size_t at = 0; at < kBlock; at += kBlock / 2) {
    FromHalf half;
    std::memcpy(&half, from + at, sizeof half);
    const auto converted = __builtin_convertvector(half, ToHalf);
    std::memcpy(to + at, &converted, sizeof converted);
  }
}
inline void CopyBlock(const char* from, char16_t* to) {
  CopyBlock<BlockHalf, WideHalf>(from, to);
}
inline void CopyBlock(const char16_t* from, char* to) {
  CopyBlock<WideHalf, BlockHalf>(from, to);
}

// Copies blocks from `index` on, which moves behind them, as long as they are ASCII. Returns the
// end of what was written.
template <typename From, typename To>
To* CopyBlocks(std::basic_string_view<From> text, std::size_t& index, To* out) {
  for (; index + kBlock <= text.size() && IsAsciiBlock(&text[index]); index += kBlock) {
    CopyBlock(&text[index], out);
    out += kBlock;
  }
  return out;
}

// Where a block is not ASCII, so many units or bytes go the general way before blocks are tried
// again: texts of several scripts would fail nearly every trial.
inline constexpr std::size_t kMixedRun = 1024;

}  // namespace zentavo::ascii_blocks
