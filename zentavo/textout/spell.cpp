#include "zentavo/textout/spell.h"

#include <cmath>

#include "zentavo/foundation/errors.h"
#include "zentavo/framework/decimal_digits.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/textout/number_words.h"
#include "zentavo/textout/spell_language.h"

namespace zentavo {
namespace {

constexpr double kLimit = 1e15;

[[noreturn]] void RaiseOutOfRange(double amount) {
  String text;
  AppendFloat(text, amount);
  ZentavoErrorFmt(u"Amount out of range: %s", {text});
}

// The magnitude in hundredths.
std::int64_t InHundredths(DecimalDigits digits) {
  digits.RoundToDecimals(2);
  std::int64_t value = 0;
  for (int place = digits.Point() - 1; place >= -2; --place) {
    value = value * 10 + (digits.DigitAt(place) - '0');
  }
  return value;
}

String WholeInWords(const SpellLanguage& language, const CurrencyWording& wording,
                    std::int64_t value, StringView currency) {
  if (currency.empty()) return NumberInWords(language, value, wording.rule_set);
  const bool is_special_one = value == 1 && !language.one_with_currency.empty();
  String words = is_special_one ? String(language.one_with_currency)
                                : NumberInWords(language, value, wording.rule_set);
  return words.append(BeforeNoun(language, value)).append(currency);
}

}  // namespace

String Spell(double amount, StringView currency, StringView language) {
  if (!(std::fabs(amount) < kLimit)) RaiseOutOfRange(amount);
  const SpellLanguage& wording = FindSpellLanguage(language);
  const CurrencyWording& unit = FindCurrency(wording, currency);
  const std::int64_t total = InHundredths(DecimalDigits(amount));

  String words;
  if (amount < 0 && total != 0) words.append(wording.minus).append(u" ");
  words += WholeInWords(wording, unit, total / 100, currency);
  if (total % 100 != 0) {
    words += wording.before_hundredths;
    words += CountInWords(wording, total % 100, unit.hundredth);
  }
  return words;
}

}  // namespace zentavo
