// How each language words an amount of money. Internal to the amount in words.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "zentavo/framework/text.h"

namespace zentavo {

// What is counted. `alone` stands for the number one and the noun together, where the language does
// not simply put "one" before it.
struct CountedNoun {
  std::string_view rule_set;  // of the number words before it: its gender
  StringView one;
  StringView few;  // two to four where the language tells them apart, otherwise as `many`
  StringView many;
  StringView alone = {};
};

// A currency, or all those that no other row of the language names.
struct CurrencyWording {
  std::array<StringView, 8> names;  // beginnings of its name, code or sign; empty ones are unused
  std::string_view rule_set;        // of the number words before its name
  CountedNoun hundredth;
};

// Replaces wordings of the system's data that the language's own spelling rules reject.
struct WordRepair {
  StringView wrong;
  StringView right;
};

enum class PluralRule { kOneAndMany, kSlavic };

struct SpellLanguage {
  StringView code;
  std::string_view locale;  // as platform::SpellOut names it
  StringView minus;
  StringView before_hundredths;  // between the whole part and the hundredths
  StringView between_words;      // within a number
  StringView before_last_word;   // between the last two words of a number; empty: as the others
  StringView before_noun;        // between a number that ends in 00 or 20..99 and its noun
  StringView one_with_currency;  // for the number one before a currency's name; empty: as ever
  PluralRule plural;
  std::array<CountedNoun, 4> scales;            // 10^3, 10^6, 10^9, 10^12
  std::span<const CurrencyWording> currencies;  // the last row stands for all others
  std::span<const WordRepair> repairs;
};

// The language of that code, in any case; Greek for a code that is none.
const SpellLanguage& FindSpellLanguage(StringView code);

// The row of the currency's name, in any case.
const CurrencyWording& FindCurrency(const SpellLanguage& language, StringView name);

}  // namespace zentavo
