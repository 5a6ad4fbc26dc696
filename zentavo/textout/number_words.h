// Whole numbers in the words of a language. Internal to the amount in words.
#pragma once

#include <cstdint>

#include "zentavo/textout/spell_language.h"

namespace zentavo {

// Returns `value` (0 to 999999999999999) in words, in the gender of `rule_set`. Raises
// EZentavoError when the system has no language data.
String NumberInWords(const SpellLanguage& language, std::int64_t value, std::string_view rule_set);

// What stands between `value` and the noun that it counts: a blank, or " de " in Romanian.
StringView BeforeNoun(const SpellLanguage& language, std::int64_t value);

// Returns `value` in words with the noun behind it, in the form that the number asks for.
String CountInWords(const SpellLanguage& language, std::int64_t value, const CountedNoun& noun);

}  // namespace zentavo
