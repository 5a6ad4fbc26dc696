#include "zentavo/textout/spell_language.h"

#include <algorithm>

namespace zentavo {
namespace {

constexpr std::string_view kMasculine = "%spellout-cardinal-masculine";
constexpr std::string_view kFeminine = "%spellout-cardinal-feminine";
constexpr std::string_view kNeuter = "%spellout-cardinal-neuter";
constexpr std::string_view kCardinal = "%spellout-cardinal";
// The full number words of Bulgarian, as sums of money are written.
constexpr std::string_view kFullMasculine = "%spellout-cardinal-masculine-financial";
constexpr std::string_view kFullFeminine = "%spellout-cardinal-feminine-financial";
constexpr std::string_view kFullNeuter = "%spellout-cardinal-neuter-financial";

constexpr CountedNoun kBulgarianCent{kFullMasculine, u"цент", u"цента", u"цента"};
constexpr CurrencyWording kBulgarianCurrencies[] = {
    {{u"евро", u"eur", u"€"}, kFullNeuter, kBulgarianCent},
    {{u"долар", u"щатски долар", u"usd", u"$"}, kFullMasculine, kBulgarianCent},
    {{}, kFullMasculine, {kFullFeminine, u"стотинка", u"стотинки", u"стотинки"}},
};

constexpr CurrencyWording kSerbianCurrencies[] = {
    {{u"evr", u"eur", u"€", u"dolar", u"usd", u"$"},
     kMasculine,
     {kMasculine, u"cent", u"centa", u"centi"}},
    {{}, kMasculine, {kFeminine, u"para", u"pare", u"para"}},
};

constexpr CurrencyWording kEnglishCurrencies[] = {
    {{u"pound", u"gbp", u"£"}, kCardinal, {kCardinal, u"penny", u"pence", u"pence"}},
    {{}, kCardinal, {kCardinal, u"cent", u"cents", u"cents"}},
};

constexpr CurrencyWording kTurkishCurrencies[] = {
    {{u"eur", u"avro", u"€", u"dolar", u"usd", u"$"},
     kCardinal,
     {kCardinal, u"sent", u"sent", u"sent"}},
    {{}, kCardinal, {kCardinal, u"kuruş", u"kuruş", u"kuruş"}},
};

constexpr CurrencyWording kRomanianCurrencies[] = {
    {{u"eur", u"€", u"dolar", u"usd", u"$"},
     kMasculine,
     {kMasculine, u"cent", u"cenți", u"cenți", u"un cent"}},
    {{}, kMasculine, {kMasculine, u"ban", u"bani", u"bani", u"un ban"}},
};
// Numbers below a thousand with the marks of today's spelling, and the contracted teens.
constexpr WordRepair kRomanianRepairs[] = {
    {u"ş", u"ș"},
    {u"ţ", u"ț"},
    {u"una sută", u"o sută"},
    {u"patrusprezece", u"paisprezece"},
    {u"șasesprezece", u"șaisprezece"},
    {u"șasezeci", u"șaizeci"},
};

constexpr CurrencyWording kRussianCurrencies[] = {
    {{u"евро", u"eur", u"€", u"доллар", u"usd", u"$"},
     kMasculine,
     {kMasculine, u"цент", u"цента", u"центов"}},
    {{}, kMasculine, {kFeminine, u"копейка", u"копейки", u"копеек"}},
};

constexpr CurrencyWording kGreekCurrencies[] = {
    {{u"δολάρι", u"δολαρι", u"usd", u"$"}, kNeuter, {kNeuter, u"σεντ", u"σεντ", u"σεντ"}},
    {{}, kNeuter, {kNeuter, u"λεπτό", u"λεπτά", u"λεπτά"}},
};
constexpr WordRepair kGreekRepairs[] = {{u"\u00AD", u""}, {u"εννενήντα", u"ενενήντα"}};

constexpr SpellLanguage kLanguages[] = {
    {.code = u"BG",
     .locale = "bg",
     .minus = u"минус",
     .before_hundredths = u" и ",
     .between_words = u" ",
     .before_last_word = u" и ",
     .before_noun = u" ",
     .one_with_currency = {},
     .plural = PluralRule::kOneAndMany,
     .scales = {{{kFullFeminine, u"хиляда", u"хиляди", u"хиляди", u"хиляда"},
                 {kFullMasculine, u"милион", u"милиона", u"милиона"},
                 {kFullMasculine, u"милиард", u"милиарда", u"милиарда"},
                 {kFullMasculine, u"трилион", u"трилиона", u"трилиона"}}},
     .currencies = kBulgarianCurrencies,
     .repairs = {}},
    {.code = u"SR",
     .locale = "sr_Latn",
     .minus = u"minus",
     .before_hundredths = u" i ",
     .between_words = u" ",
     .before_last_word = {},
     .before_noun = u" ",
     .one_with_currency = {},
     .plural = PluralRule::kSlavic,
     .scales = {{{kFeminine, u"hiljada", u"hiljade", u"hiljada", u"hiljadu"},
                 {kMasculine, u"milion", u"miliona", u"miliona"},
                 {kFeminine, u"milijarda", u"milijarde", u"milijardi"},
                 {kMasculine, u"bilion", u"biliona", u"biliona"}}},
     .currencies = kSerbianCurrencies,
     .repairs = {}},
    {.code = u"EN",
     .locale = "en",
     .minus = u"minus",
     .before_hundredths = u" and ",
     .between_words = u" ",
     .before_last_word = {},
     .before_noun = u" ",
     .one_with_currency = {},
     .plural = PluralRule::kOneAndMany,
     .scales = {{{kCardinal, u"thousand", u"thousand", u"thousand"},
                 {kCardinal, u"million", u"million", u"million"},
                 {kCardinal, u"billion", u"billion", u"billion"},
                 {kCardinal, u"trillion", u"trillion", u"trillion"}}},
     .currencies = kEnglishCurrencies,
     .repairs = {}},
    {.code = u"TR",
     .locale = "tr",
     .minus = u"eksi",
     .before_hundredths = u", ",
     .between_words = {},
     .before_last_word = {},
     .before_noun = u" ",
     .one_with_currency = {},
     .plural = PluralRule::kOneAndMany,
     .scales = {{{kCardinal, u"bin", u"bin", u"bin", u"bin"},
                 {kCardinal, u"milyon", u"milyon", u"milyon"},
                 {kCardinal, u"milyar", u"milyar", u"milyar"},
                 {kCardinal, u"trilyon", u"trilyon", u"trilyon"}}},
     .currencies = kTurkishCurrencies,
     .repairs = {}},
    {.code = u"RO",
     .locale = "ro",
     .minus = u"minus",
     .before_hundredths = u" și ",
     .between_words = u" ",
     .before_last_word = {},
     .before_noun = u" de ",
     .one_with_currency = u"un",
     .plural = PluralRule::kOneAndMany,
     .scales = {{{kFeminine, u"mie", u"mii", u"mii", u"o mie"},
                 {kNeuter, u"milion", u"milioane", u"milioane", u"un milion"},
                 {kNeuter, u"miliard", u"miliarde", u"miliarde", u"un miliard"},
                 {kNeuter, u"trilion", u"trilioane", u"trilioane", u"un trilion"}}},
     .currencies = kRomanianCurrencies,
     .repairs = kRomanianRepairs},
    {.code = u"RU",
     .locale = "ru",
     .minus = u"минус",
     .before_hundredths = u" и ",
     .between_words = u" ",
     .before_last_word = {},
     .before_noun = u" ",
     .one_with_currency = {},
     .plural = PluralRule::kSlavic,
     .scales = {{{kFeminine, u"тысяча", u"тысячи", u"тысяч"},
                 {kMasculine, u"миллион", u"миллиона", u"миллионов"},
                 {kMasculine, u"миллиард", u"миллиарда", u"миллиардов"},
                 {kMasculine, u"триллион", u"триллиона", u"триллионов"}}},
     .currencies = kRussianCurrencies,
     .repairs = {}},
};

constexpr SpellLanguage kGreek{
    .code = u"EL",
    .locale = "el",
    .minus = u"μείον",
    .before_hundredths = u" και ",
    .between_words = u" ",
    .before_last_word = {},
    .before_noun = u" ",
    .one_with_currency = {},
    .plural = PluralRule::kOneAndMany,
    .scales = {{{kFeminine, u"χιλιάδα", u"χιλιάδες", u"χιλιάδες", u"χίλια"},
                {kNeuter, u"εκατομμύριο", u"εκατομμύρια", u"εκατομμύρια"},
                {kNeuter, u"δισεκατομμύριο", u"δισεκατομμύρια", u"δισεκατομμύρια"},
                {kNeuter, u"τρισεκατομμύριο", u"τρισεκατομμύρια", u"τρισεκατομμύρια"}}},
    .currencies = kGreekCurrencies,
    .repairs = kGreekRepairs};

bool BeginsWith(StringView text, StringView beginning) {
  return !beginning.empty() && SameText(text.substr(0, beginning.size()), beginning);
}

bool Names(const CurrencyWording& currency, StringView name) {
  return std::any_of(currency.names.begin(), currency.names.end(),
                     [name](StringView beginning) { return BeginsWith(name, beginning); });
}

}  // namespace

const SpellLanguage& FindSpellLanguage(StringView code) {
  const auto* const found =
      std::find_if(std::begin(kLanguages), std::end(kLanguages),
                   [code](const SpellLanguage& language) { return SameText(language.code, code); });
  return found == std::end(kLanguages) ? kGreek : *found;
}

const CurrencyWording& FindCurrency(const SpellLanguage& language, StringView name) {
  const auto found = std::find_if(
      language.currencies.begin(), language.currencies.end(),
      [name](const CurrencyWording& currency) { return Names(currency, TrimView(name)); });
  return found == language.currencies.end() ? language.currencies.back() : *found;
}

}  // namespace zentavo
