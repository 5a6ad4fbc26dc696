// What Windows documents for its single-byte code pages beyond the converters of this system: the
// units of some bytes, and the characters that may take another one's place.
#pragma once

#include <cstdint>
#include <vector>

#include "zentavo/platform/linux/single_byte_page.h"

namespace zentavo::platform {

// Puts the documented units in the place of those that differ.
void ApplyDocumentedUnits(std::uint32_t code_page, SingleBytePage::Units& units);

// In order of their units; none for a page that is not documented.
std::vector<BestFit> DocumentedBestFits(std::uint32_t code_page);

}  // namespace zentavo::platform
