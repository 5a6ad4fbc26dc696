// Whole numbers in words, by the system's language data.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// Returns `value` in words. `language` is a lower-case two-letter code, with a script behind it
// where the language is written in several ("el", "sr_Latn"); `rule_set` names one of the
// language's spell-out rule sets ("%spellout-cardinal-neuter"), empty for its default one. An
// unknown rule set falls back to the default one. The words are the data's own: soft hyphens stay,
// and magnitudes of 1E18 and above may come as digits.
// Nothing when the system has no such data (on Windows the data come from the system's icu.dll,
// looked up at run time).
// May be called from any thread. The first call for a language and a rule set is slow.
ZENTAVO_API std::optional<std::u16string> SpellOut(std::int64_t value, std::string_view language,
                                                   std::string_view rule_set);

}  // namespace zentavo::platform
