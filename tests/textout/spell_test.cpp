#include "zentavo/textout/spell.h"

#include <gtest/gtest.h>

#include <limits>

#include "zentavo/foundation/errors.h"
#include "zentavo/platform/spell_out.h"

namespace zentavo {
namespace {

struct SpellRow {
  const char16_t* language;
  double amount;
  const char16_t* currency;
  const char16_t* words;
};

// The words, or the error where the system has no language data and the words need them.
void ExpectWords(const SpellRow& row) {
  SCOPED_TRACE(testing::Message() << ToUtf8(row.language) << " " << row.amount << " "
                                  << ToUtf8(row.currency));
  try {
    EXPECT_EQ(ToUtf8(Spell(row.amount, row.currency, row.language)), ToUtf8(row.words));
  } catch (const EZentavoError& error) {
    EXPECT_STREQ(error.what(), "Amounts in words need the system's language data (icu.dll)");
    EXPECT_FALSE(platform::SpellOut(1, "en", ""));
  }
}

constexpr SpellRow kAmounts[] = {
    {u"BG", 0, u"", u"нула"},
    {u"BG", 1, u"", u"един"},
    {u"BG", 2, u"", u"два"},
    {u"BG", 5, u"", u"пет"},
    {u"BG", 11, u"", u"единадесет"},
    {u"BG", 21, u"", u"двадесет и един"},
    {u"BG", 100, u"", u"сто"},
    {u"BG", 120, u"", u"сто и двадесет"},
    {u"BG", 1100, u"", u"хиляда и сто"},
    {u"BG", 1115, u"", u"хиляда сто и петнадесет"},
    {u"BG", 1234.56, u"", u"хиляда двеста тридесет и четири и петдесет и шест стотинки"},
    {u"BG", 21002, u"", u"двадесет и една хиляди и два"},
    {u"BG", 1000000, u"", u"един милион"},
    {u"BG", 1200000, u"", u"един милион и двеста хиляди"},
    {u"BG", 0.01, u"", u"нула и една стотинка"},
    {u"BG", -3.5, u"", u"минус три и петдесет стотинки"},
    {u"BG", 999999999999.99, u"",
     u"деветстотин деветдесет и девет милиарда деветстотин деветдесет и девет милиона деветстотин "
     u"деветдесет и девет хиляди деветстотин деветдесет и девет и деветдесет и девет стотинки"},
    {u"BG", 1.02, u"лев", u"един лев и две стотинки"},
    {u"BG", 1.02, u"евро", u"едно евро и два цента"},
    {u"BG", 2.21, u"EUR", u"две EUR и двадесет и един цента"},

    {u"SR", 0, u"", u"nula"},
    {u"SR", 1, u"", u"jedan"},
    {u"SR", 2, u"", u"dva"},
    {u"SR", 5, u"", u"pet"},
    {u"SR", 11, u"", u"jedanaest"},
    {u"SR", 21, u"", u"dvadeset i jedan"},
    {u"SR", 100, u"", u"sto"},
    {u"SR", 1234.56, u"", u"hiljadu dvesta trideset i četiri i pedeset i šest para"},
    {u"SR", 2000, u"", u"dve hiljade"},
    {u"SR", 21000, u"", u"dvadeset i jedna hiljada"},
    {u"SR", 12000, u"", u"dvanaest hiljada"},
    {u"SR", 1000000, u"", u"jedan milion"},
    {u"SR", 2000000000, u"", u"dve milijarde"},
    {u"SR", 0.01, u"", u"nula i jedna para"},
    {u"SR", 0.12, u"", u"nula i dvanaest para"},
    {u"SR", -3.5, u"", u"minus tri i pedeset para"},
    {u"SR", 999999999999.99, u"",
     u"devetsto devedeset i devet milijardi devetsto devedeset i devet miliona devetsto devedeset "
     u"i devet hiljada devetsto devedeset i devet i devedeset i devet para"},
    {u"SR", 22.22, u"dinara", u"dvadeset i dva dinara i dvadeset i dve pare"},
    {u"SR", 1.03, u"evro", u"jedan evro i tri centa"},

    {u"EN", 0, u"", u"zero"},
    {u"EN", 1, u"", u"one"},
    {u"EN", 2, u"", u"two"},
    {u"EN", 5, u"", u"five"},
    {u"EN", 11, u"", u"eleven"},
    {u"EN", 21, u"", u"twenty-one"},
    {u"EN", 100, u"", u"one hundred"},
    {u"EN", 1234.56, u"euro", u"one thousand two hundred thirty-four euro and fifty-six cents"},
    {u"EN", 1000000, u"", u"one million"},
    {u"EN", 0.01, u"", u"zero and one cent"},
    {u"EN", -3.5, u"", u"minus three and fifty cents"},
    {u"EN", 999999999999.99, u"",
     u"nine hundred ninety-nine billion nine hundred ninety-nine million nine hundred ninety-nine "
     u"thousand nine hundred ninety-nine and ninety-nine cents"},
    {u"EN", 3.05, u"Pounds", u"three Pounds and five pence"},

    {u"TR", 0, u"", u"sıfır"},
    {u"TR", 1, u"", u"bir"},
    {u"TR", 2, u"", u"iki"},
    {u"TR", 5, u"", u"beş"},
    {u"TR", 11, u"", u"onbir"},
    {u"TR", 21, u"", u"yirmibir"},
    {u"TR", 100, u"", u"yüz"},
    {u"TR", 1234.56, u"TL", u"binikiyüzotuzdört TL, ellialtı kuruş"},
    {u"TR", 1000000, u"", u"birmilyon"},
    {u"TR", 0.01, u"", u"sıfır, bir kuruş"},
    {u"TR", -3.5, u"", u"eksi üç, elli kuruş"},
    {u"TR", 999999999999.99, u"",
     u"dokuzyüzdoksandokuzmilyardokuzyüzdoksandokuzmilyondokuzyüzdoksandokuzbin"
     u"dokuzyüzdoksandokuz, doksandokuz kuruş"},
    {u"TR", 2.5, u"avro", u"iki avro, elli sent"},

    {u"RO", 0, u"", u"zero"},
    {u"RO", 1, u"", u"unu"},
    {u"RO", 2, u"", u"doi"},
    {u"RO", 5, u"", u"cinci"},
    {u"RO", 11, u"", u"unsprezece"},
    {u"RO", 14, u"", u"paisprezece"},
    {u"RO", 16, u"", u"șaisprezece"},
    {u"RO", 21, u"", u"douăzeci și unu"},
    {u"RO", 100, u"", u"o sută"},
    {u"RO", 1234.56, u"lei",
     u"o mie două sute treizeci și patru de lei și cincizeci și șase de bani"},
    {u"RO", 101.19, u"lei", u"o sută unu lei și nouăsprezece bani"},
    {u"RO", 21000, u"", u"douăzeci și una de mii"},
    {u"RO", 160000, u"", u"o sută șaizeci de mii"},
    {u"RO", 1000000, u"euro", u"un milion de euro"},
    {u"RO", 2000002, u"", u"două milioane doi"},
    {u"RO", 0.01, u"", u"zero și un ban"},
    {u"RO", -3.5, u"", u"minus trei și cincizeci de bani"},
    {u"RO", 999999999999.99, u"",
     u"nouă sute nouăzeci și nouă de miliarde nouă sute nouăzeci și nouă de milioane nouă sute "
     u"nouăzeci și nouă de mii nouă sute nouăzeci și nouă și nouăzeci și nouă de bani"},
    {u"RO", 1.02, u"leu", u"un leu și doi bani"},
    {u"RO", 0.01, u"euro", u"zero euro și un cent"},

    {u"RU", 0, u"", u"ноль"},
    {u"RU", 1, u"", u"один"},
    {u"RU", 2, u"", u"два"},
    {u"RU", 5, u"", u"пять"},
    {u"RU", 11, u"", u"одиннадцать"},
    {u"RU", 21, u"", u"двадцать один"},
    {u"RU", 100, u"", u"сто"},
    {u"RU", 1234.56, u"руб.", u"одна тысяча двести тридцать четыре руб. и пятьдесят шесть копеек"},
    {u"RU", 22000, u"", u"двадцать две тысячи"},
    {u"RU", 112000, u"", u"сто двенадцать тысяч"},
    {u"RU", 1000000, u"", u"один миллион"},
    {u"RU", 0.01, u"", u"ноль и одна копейка"},
    {u"RU", 0.22, u"", u"ноль и двадцать две копейки"},
    {u"RU", 0.14, u"", u"ноль и четырнадцать копеек"},
    {u"RU", -3.5, u"", u"минус три и пятьдесят копеек"},
    {u"RU", 999999999999.99, u"",
     u"девятьсот девяносто девять миллиардов девятьсот девяносто девять миллионов девятьсот "
     u"девяносто девять тысяч девятьсот девяносто девять и девяносто девять копеек"},
    {u"RU", 2.02, u"доллара", u"два доллара и два цента"},

    {u"EL", 0, u"", u"μηδέν"},
    {u"EL", 1, u"", u"ένα"},
    {u"EL", 2, u"", u"δύο"},
    {u"EL", 5, u"", u"πέντε"},
    {u"EL", 11, u"", u"έντεκα"},
    {u"EL", 13, u"", u"δεκατρία"},
    {u"EL", 21, u"", u"είκοσι ένα"},
    {u"EL", 100, u"", u"εκατό"},
    {u"EL", 101, u"", u"εκατόν ένα"},
    {u"EL", 1234.56, u"", u"χίλια διακόσια τριάντα τέσσερα και πενήντα έξι λεπτά"},
    {u"EL", 203004, u"", u"διακόσιες τρεις χιλιάδες τέσσερα"},
    {u"EL", 1000000, u"", u"ένα εκατομμύριο"},
    {u"EL", 0.01, u"", u"μηδέν και ένα λεπτό"},
    {u"EL", -3.5, u"ευρώ", u"μείον τρία ευρώ και πενήντα λεπτά"},
    {u"EL", 999999999999.99, u"",
     u"εννιακόσια ενενήντα εννέα δισεκατομμύρια εννιακόσια ενενήντα εννέα εκατομμύρια εννιακόσιες "
     u"ενενήντα εννέα χιλιάδες εννιακόσια ενενήντα εννέα και ενενήντα εννέα λεπτά"},
    {u"EL", 1.01, u"δολάριο", u"ένα δολάριο και ένα σεντ"},
};

TEST(Spell, WordsAmountsAsInvoicesDo) {
  for (const SpellRow& row : kAmounts) ExpectWords(row);
}

TEST(Spell, LanguageCodesIgnoreCaseAndUnknownOnesAreGreek) {
  ExpectWords({u"en", 2, u"", u"two"});
  ExpectWords({u"tR", 2, u"", u"iki"});
  ExpectWords({u"FR", 2, u"", u"δύο"});
  ExpectWords({u"", 2, u"", u"δύο"});
}

TEST(Spell, HundredthsRoundHalfAwayFromZero) {
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

TEST(Spell, AmountsThatAreNoneAreRefused) {
  struct Row {
    double amount;
    const char* message;
  };
  const double infinity = std::numeric_limits<double>::infinity();
  for (const Row& row :
       {Row{1e15, "Amount out of range: 1E15"}, Row{-1e15, "Amount out of range: -1E15"},
        Row{infinity, "Amount out of range: INF"},
        Row{std::numeric_limits<double>::quiet_NaN(), "Amount out of range: NAN"}}) {
    try {
      Spell(row.amount, u"", u"EN");
      ADD_FAILURE() << row.message;
    } catch (const EZentavoError& error) {
      EXPECT_STREQ(error.what(), row.message);
    }
  }
}

}  // namespace
}  // namespace zentavo
