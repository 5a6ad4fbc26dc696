#include "zentavo/platform/case_mapping.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

struct Single {
  char16_t unit, upper, lower;
};
// The units whose mapping does not lead back, the final sigma among them: the system leaves them as
// they are. Sorted by unit.
constexpr std::array kSingles = {
    Single{0x00B5, 0x039C, 0x00B5}, Single{0x0130, 0x0130, 0x0069}, Single{0x0131, 0x0049, 0x0131},
    Single{0x017F, 0x0053, 0x017F}, Single{0x01C5, 0x01C4, 0x01C6}, Single{0x01C8, 0x01C7, 0x01C9},
    Single{0x01CB, 0x01CA, 0x01CC}, Single{0x01F2, 0x01F1, 0x01F3}, Single{0x0345, 0x0399, 0x0345},
    Single{0x03C2, 0x03A3, 0x03C2}, Single{0x03D0, 0x0392, 0x03D0}, Single{0x03D1, 0x0398, 0x03D1},
    Single{0x03D5, 0x03A6, 0x03D5}, Single{0x03D6, 0x03A0, 0x03D6}, Single{0x03F0, 0x039A, 0x03F0},
    Single{0x03F1, 0x03A1, 0x03F1}, Single{0x03F4, 0x03F4, 0x03B8}, Single{0x03F5, 0x0395, 0x03F5},
    Single{0x1C80, 0x0412, 0x1C80}, Single{0x1C81, 0x0414, 0x1C81}, Single{0x1C82, 0x041E, 0x1C82},
    Single{0x1C83, 0x0421, 0x1C83}, Single{0x1C84, 0x0422, 0x1C84}, Single{0x1C85, 0x0422, 0x1C85},
    Single{0x1C86, 0x042A, 0x1C86}, Single{0x1C87, 0x0462, 0x1C87}, Single{0x1C88, 0xA64A, 0x1C88},
    Single{0x1E9B, 0x1E60, 0x1E9B}, Single{0x1E9E, 0x1E9E, 0x00DF}, Single{0x1FBE, 0x0399, 0x1FBE},
    Single{0x2126, 0x2126, 0x03C9}, Single{0x212A, 0x212A, 0x006B}, Single{0x212B, 0x212B, 0x00E5},
};

// Maps the units that the system left, by the member `mapped` of their entries.
void MapSingles(std::span<char16_t> units, char16_t Single::*mapped) {
  for (char16_t& unit : units) {
    if (unit < kSingles.front().unit) continue;
    const auto* found = std::lower_bound(
        kSingles.begin(), kSingles.end(), unit,
        [](const Single& single, char16_t wanted) { return single.unit < wanted; });
    if (found != kSingles.end() && found->unit == unit) unit = found->*mapped;
  }
}

bool IsSurrogate(char16_t unit) {
  return (unit & 0xF800) == 0xD800;
}

// Maps the runs between surrogates: the system would map pairs as well.
void MapRuns(std::span<char16_t> units, DWORD flags) {
  constexpr std::ptrdiff_t kLongestRun = 1 << 20;
  auto start = units.begin();
  while ((start = std::find_if_not(start, units.end(), IsSurrogate)) != units.end()) {
    const auto limit = start + std::min(units.end() - start, kLongestRun);
    const auto end = std::find_if(start, limit, IsSurrogate);
    wchar_t* run = AsWide(&*start);
    const int size = static_cast<int>(end - start);
    LCMapStringEx(LOCALE_NAME_INVARIANT, flags, run, size, run, size, nullptr, nullptr, 0);
    start = end;
  }
}

}  // namespace

void UpperCaseUnits(std::span<char16_t> units) {
  MapRuns(units, LCMAP_UPPERCASE);
  MapSingles(units, &Single::upper);
}

void LowerCaseUnits(std::span<char16_t> units) {
  MapRuns(units, LCMAP_LOWERCASE);
  MapSingles(units, &Single::lower);
}

}  // namespace zentavo::platform
