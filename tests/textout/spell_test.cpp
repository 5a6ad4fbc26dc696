#include "zentavo/textout/spell.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

#include "tests/support/error_of.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/foundation/helper_text.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/platform/spell_out.h"

namespace zentavo {
namespace {

struct SpellRow {
  const char16_t* language;
  double amount;
  const char16_t *currency, *words;
};

// The words, or the error where the system has no language data and the words need them.
void ExpectWords(const SpellRow& row) {
  SCOPED_TRACE(::testing::Message()
               << ToUtf8(row.language) << " " << row.amount << " " << ToUtf8(row.currency));
  try {
    EXPECT_EQ(ToUtf8(Spell(row.amount, row.currency, row.language)), ToUtf8(row.words));
  } catch (const EZentavoError& error) {
    EXPECT_STREQ(error.what(), "Amounts in words need the system's language data (icu.dll)");
    EXPECT_FALSE(platform::SpellOut(1, "en", ""));
  }
}

// Amounts without a currency and their words.
constexpr std::pair<const char16_t*, const char16_t*> kPlainAmounts[] = {
    {u"BG",
     u"0 нула|1 един|2 два|5 пет|11 единадесет|21 двадесет и един|100 сто|"
     u"120 сто и двадесет|1100 хиляда и сто|1115 хиляда сто и петнадесет|"
     u"1234.56 хиляда двеста тридесет и четири и петдесет и шест стотинки|"
     u"21002 двадесет и една хиляди и два|1000000 един милион|"
     u"1200000 един милион и двеста хиляди|0.01 нула и една стотинка|"
     u"-3.5 минус три и петдесет стотинки"},
    {u"SR",
     u"0 nula|1 jedan|2 dva|5 pet|11 jedanaest|21 dvadeset i jedan|100 sto|"
     u"1234.56 hiljadu dvesta trideset i četiri i pedeset i šest para|2000 dve hiljade|"
     u"21000 dvadeset i jedna hiljada|12000 dvanaest hiljada|1000000 jedan milion|"
     u"2000000000 dve milijarde|0.01 nula i jedna para|0.12 nula i dvanaest para|"
     u"-3.5 minus tri i pedeset para"},
    {u"EN",
     u"0 zero|1 one|2 two|5 five|11 eleven|21 twenty-one|100 one hundred|"
     u"1000000 one million|0.01 zero and one cent|-3.5 minus three and fifty cents"},
    {u"TR",
     u"0 sıfır|1 bir|2 iki|5 beş|11 onbir|21 yirmibir|100 yüz|1000000 birmilyon|"
     u"0.01 sıfır, bir kuruş|-3.5 eksi üç, elli kuruş"},
    {u"RO",
     u"0 zero|1 unu|2 doi|5 cinci|11 unsprezece|14 paisprezece|16 șaisprezece|"
     u"21 douăzeci și unu|100 o sută|21000 douăzeci și una de mii|"
     u"160000 o sută șaizeci de mii|2000002 două milioane doi|0.01 zero și un ban|"
     u"-3.5 minus trei și cincizeci de bani"},
    {u"RU",
     u"0 ноль|1 один|2 два|5 пять|11 одиннадцать|21 двадцать один|100 сто|"
     u"22000 двадцать две тысячи|112000 сто двенадцать тысяч|1000000 один миллион|"
     u"0.01 ноль и одна копейка|0.22 ноль и двадцать две копейки|"
     u"0.14 ноль и четырнадцать копеек|-3.5 минус три и пятьдесят копеек"},
    {u"EL",
     u"0 μηδέν|1 ένα|2 δύο|5 πέντε|11 έντεκα|13 δεκατρία|21 είκοσι ένα|100 εκατό|"
     u"101 εκατόν ένα|1234.56 χίλια διακόσια τριάντα τέσσερα και πενήντα έξι λεπτά|"
     u"203004 διακόσιες τρεις χιλιάδες τέσσερα|1000000 ένα εκατομμύριο|"
     u"0.01 μηδέν και ένα λεπτό"},
};

constexpr SpellRow kAmounts[] = {
    {u"BG", 1.02, u"лев", u"един лев и две стотинки"},
    {u"BG", 1.02, u"евро", u"едно евро и два цента"},
    {u"BG", 2.21, u"EUR", u"две EUR и двадесет и един цента"},
    {u"SR", 999999999999.99, u"",
     u"devetsto devedeset i devet milijardi devetsto devedeset i devet miliona devetsto devedeset "
     u"i devet hiljada devetsto devedeset i devet i devedeset i devet para"},
    {u"SR", 22.22, u"dinara", u"dvadeset i dva dinara i dvadeset i dve pare"},
    {u"SR", 1.03, u"evro", u"jedan evro i tri centa"},
    {u"EN", 1234.56, u"euro", u"one thousand two hundred thirty-four euro and fifty-six cents"},
    {u"EN", 999999999999.99, u"",
     u"nine hundred ninety-nine billion nine hundred ninety-nine million nine hundred ninety-nine "
     u"thousand nine hundred ninety-nine and ninety-nine cents"},
    {u"EN", 3.05, u"Pounds", u"three Pounds and five pence"},
    {u"TR", 1234.56, u"TL", u"binikiyüzotuzdört TL, ellialtı kuruş"},
    {u"TR", 999999999999.99, u"",
     u"dokuzyüzdoksandokuzmilyardokuzyüzdoksandokuzmilyondokuzyüzdoksandokuzbin"
     u"dokuzyüzdoksandokuz, doksandokuz kuruş"},
    {u"TR", 2.5, u"avro", u"iki avro, elli sent"},
    {u"RO", 1234.56, u"lei",
     u"o mie două sute treizeci și patru de lei și cincizeci și șase de bani"},
    {u"RO", 101.19, u"lei", u"o sută unu lei și nouăsprezece bani"},
    {u"RO", 1000000, u"euro", u"un milion de euro"},
    {u"RO", 999999999999.99, u"",
     u"nouă sute nouăzeci și nouă de miliarde nouă sute nouăzeci și nouă de milioane nouă sute "
     u"nouăzeci și nouă de mii nouă sute nouăzeci și nouă și nouăzeci și nouă de bani"},
    {u"RO", 1.02, u"leu", u"un leu și doi bani"},
    {u"RO", 0.01, u"euro", u"zero euro și un cent"},
    {u"RU", 1234.56, u"руб.", u"одна тысяча двести тридцать четыре руб. и пятьдесят шесть копеек"},
    {u"RU", 999999999999.99, u"",
     u"девятьсот девяносто девять миллиардов девятьсот девяносто девять миллионов девятьсот "
     u"девяносто девять тысяч девятьсот девяносто девять и девяносто девять копеек"},
    {u"RU", 2.02, u"доллара", u"два доллара и два цента"},
    {u"EL", -3.5, u"ευρώ", u"μείον τρία ευρώ και πενήντα λεπτά"},
    {u"EL", 999999999999.99, u"",
     u"εννιακόσια ενενήντα εννέα δισεκατομμύρια εννιακόσια ενενήντα εννέα εκατομμύρια εννιακόσιες "
     u"ενενήντα εννέα χιλιάδες εννιακόσια ενενήντα εννέα και ενενήντα εννέα λεπτά"},
    {u"EL", 1.01, u"δολάριο", u"ένα δολάριο και ένα σεντ"},
};

TEST(Spell, WordsAmountsAsInvoicesDo) {
  for (const auto& [language, amounts] : kPlainAmounts) {
    for (const String& amount : SplitStr(amounts, u'|')) {
      const std::size_t blank = amount.find(u' ');
      ExpectWords({language, StrToFloat(amount.substr(0, blank), TFormatSettings()), u"",
                   &amount[blank + 1]});
    }
  }
  for (const SpellRow& row : kAmounts) ExpectWords(row);
}

TEST(Spell, LanguageCodesIgnoreCaseAndHundredthsRoundAwayFromZero) {
  ExpectWords({u"en", 2, u"", u"two"});
  ExpectWords({u"tR", 2, u"", u"iki"});
  ExpectWords({u"FR", 2, u"", u"δύο"});
  ExpectWords({u"", 2, u"", u"δύο"});
  ExpectWords({u"EN", 1.005, u"", u"one and one cent"});
  ExpectWords({u"EN", -2.675, u"", u"minus two and sixty-eight cents"});
  ExpectWords({u"EN", 1.004, u"", u"one"});
  ExpectWords({u"EN", 9.995, u"", u"ten"});
  ExpectWords({u"EN", -0.004, u"", u"zero"});
}

TEST(Spell, LargestAmountIsBelowAQuadrillion) {
  ExpectWords({u"EN", 1e12, u"", u"one trillion"});
  ExpectWords({u"BG", 999999999999999, u"",
               u"деветстотин деветдесет и девет трилиона деветстотин деветдесет и девет милиарда "
               u"деветстотин деветдесет и девет милиона деветстотин деветдесет и девет хиляди "
               u"деветстотин деветдесет и девет"});
}

TEST(Spell, ThreadsSpellSideBySide) {
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([] {
      for (int round = 0; round < 20; ++round) {
        for (const SpellRow& row : kAmounts) ExpectWords(row);
      }
    });
  }
}

TEST(Spell, AmountsThatAreNoneAreRefused) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const std::pair<double, std::string> rows[] = {
      {1e15, "1E15"}, {-1e15, "-1E15"}, {kInfinity, "INF"}, {kNan, "NAN"}};
  for (const auto& [amount, text] : rows) {
    EXPECT_EQ(testing::ErrorOf<EZentavoError>([&] { Spell(amount, u"", u"EN"); }),
              "Amount out of range: " + text);
  }
}

}  // namespace
}  // namespace zentavo
