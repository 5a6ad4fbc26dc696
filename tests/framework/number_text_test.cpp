#include "zentavo/framework/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <thread>

#include "tests/support/error_of.h"
#include "tests/support/sides.h"
#include "tests/support/thread_settings.h"

namespace zentavo {
namespace {

using testing::ErrorOf;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::uint64_t kSeed = 20240229;

// A finite double of any magnitude, or with few digits, as amounts are.
double RandomDouble(std::mt19937_64& random) {
  if (random() % 2 == 0) return static_cast<double>(static_cast<std::int32_t>(random())) / 1000;
  const auto value = std::bit_cast<double>(random());
  return std::isfinite(value) ? value : 0;
}

TEST(IntToStr, WritesTheWholeRange) {
  EXPECT_EQ(IntToStr(0), u"0");
  EXPECT_EQ(IntToStr(-42), u"-42");
  EXPECT_EQ(IntToStr(std::numeric_limits<std::int64_t>::min()), u"-9223372036854775808");
  String text = u"n=";
  AppendUInt(text, std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(text, u"n=18446744073709551615");
  EXPECT_EQ(IntToHex(0, 0), u"0");
  EXPECT_EQ(IntToHex(0xBEEF, 2), u"BEEF");
  EXPECT_EQ(IntToHex(0xA, 20), u"0000000000000000000A");
}

TEST(FloatToStr, WritesAtMostFifteenDigits) {
  struct Row {
    double value;
    const char* text;
  };
  for (const Row& row : {Row{0, "0"}, Row{-0.0, "0"}, Row{2.0 / 3, "0.666666666666667"},
                         Row{1e15, "1E15"}, Row{-1234567890123456, "-1.23456789012346E15"},
                         Row{999999999999999.9, "1E15"}, Row{0.00001, "0.00001"},
                         Row{0.00000999, "9.99E-6"}, Row{0.0000099999999999999999, "0.00001"},
                         Row{1.7976931348623157e308, "1.79769313486232E308"}, Row{kInfinity, "INF"},
                         Row{std::numeric_limits<double>::quiet_NaN(), "NAN"}}) {
    EXPECT_EQ(ToUtf8(FloatToStr(row.value, TFormatSettings())), row.text);
    AnsiString bytes;
    AppendFloat(bytes, row.value);
    EXPECT_EQ(bytes, row.text);
  }
}

struct PlainDigits {
  std::string digits;
  int exponent = 0;  // of the first digit
};

PlainDigits ShortestDigits(double magnitude) {
  char text[40];
  const auto end = std::to_chars(text, std::end(text), magnitude, std::chars_format::scientific);
  std::string digits(text, end.ptr);
  const std::size_t mark = digits.find('e');
  const int exponent = std::stoi(digits.substr(mark + 1));
  digits.resize(mark);
  std::erase(digits, '.');
  return {digits, exponent};
}

void RoundToFifteen(PlainDigits& number) {
  if (number.digits.size() > 15) {
    const bool up = number.digits[15] >= '5';
    const std::string kept = std::to_string(std::stoll(number.digits.substr(0, 15)) + up);
    if (kept.size() > 15) ++number.exponent;
    number.digits = kept;
  }
  number.digits.erase(number.digits.find_last_not_of('0') + 1);
}

std::string PlainFloatToStr(double value) {
  PlainDigits number = ShortestDigits(std::fabs(value));
  RoundToFifteen(number);
  const auto& [digits, exponent] = number;
  const std::string sign = value < 0 ? "-" : "";
  if (exponent >= 15 || exponent < -5) {
    const std::string rest = digits.size() > 1 ? "." + digits.substr(1) : "";
    return sign + digits[0] + rest + "E" + std::to_string(exponent);
  }
  const std::string padded =
      std::string(exponent < 0 ? static_cast<std::size_t>(-exponent) : 0, '0') + digits;
  const auto before = static_cast<std::size_t>(exponent < 0 ? 1 : exponent + 1);
  if (padded.size() <= before) return sign + padded + std::string(before - padded.size(), '0');
  return sign + padded.substr(0, before) + "." + padded.substr(before);
}

TEST(FloatToStr, EqualsThePlainWay) {
  std::mt19937_64 random(kSeed);
  for (int round = 0; round < 20000; ++round) {
    const double value = RandomDouble(random);
    if (value == 0) continue;
    AnsiString text;
    AppendFloat(text, value);
    ASSERT_EQ(text, PlainFloatToStr(value)) << "seed " << kSeed;
  }
}

TEST(FloatToFixed, RoundsHalvesAwayFromZero) {
  struct Row {
    double value;
    int decimals;
    Grouping grouping;
    const char* text;
  };
  for (const Row& row :
       {Row{2.675, 2, Grouping::kNone, "2.68"}, Row{-0.004, 2, Grouping::kNone, "0.00"},
        Row{999.995, 2, Grouping::kThousands, "1,000.00"},
        Row{-1234567.891, 1, Grouping::kThousands, "-1,234,567.9"},
        Row{1e21, 0, Grouping::kNone, "1000000000000000000000"},
        Row{0.1, 99, Grouping::kNone, "0.100000000000000000"}, Row{0.6, -3, Grouping::kNone, "1"},
        Row{-kInfinity, 2, Grouping::kNone, "-INF"}}) {
    EXPECT_EQ(ToUtf8(FloatToFixed(row.value, row.decimals, row.grouping, u'.', u',')), row.text);
  }
}

TEST(FormatFloat, WritesByPattern) {
  const TFormatSettings settings;
  const auto format = [&](StringView given) {  // "number pattern"
    const std::size_t blank = given.find(u' ');
    const double value = StrToFloat(given.substr(0, blank), settings);
    return ToUtf8(FormatFloat(given.substr(blank + 1), value, settings));
  };
  testing::ExpectRows(
      {u"5.5 0.## -> 5.5", u"0.5 #.## -> .5", u"0 #.## -> ",
       u"1234567.005 #,##0.00 -> 1,234,567.01", u"-1234567 ,0 -> -1,234,567",
       u"999.5 #,### -> 1,000", u"7 0,000 -> 0,007", u"5551234567 (###) ###-#### -> (555) 123-4567",
       u"5 #0# -> 05", u"1.5 0.0#0# -> 1.500", u"3 '#'0 \"0.0\" kg -> #3 0.0 kg",
       u"0 0;(0);nil -> nil"},
      format);
  testing::ExpectRows({u"-0.04 0.0;(0.0);nil -> nil", u"-2 0.0;;nil -> -2.0", u"2.25 ;(0) -> 2.25",
                       u"-3 0;';';x -> ;", u"-3 text -> -text", u"0.00012345 0.00E+00 -> 1.23E-04",
                       u"12345 00.0E+0 -> 12.3E+3", u"9.96 0.0E+0 -> 1.0E+1",
                       u"-5e-7 #.#E-0 -> -5E-7", u"5 0E -> 5E", u"1.5  -> 1.5"},
                      format);
  EXPECT_EQ(FormatFloat(u"0.0", kInfinity, settings), u"INF");
}

TEST(StrToInt, ReadsDecimalAndHexadecimal) {
  struct Row {
    const char16_t* text;
    std::int64_t value;
  };
  for (const Row& row : {Row{u" \t+17", 17}, Row{u"9223372036854775807", 9223372036854775807LL},
                         Row{u"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
                         Row{u"$fF", 255}, Row{u"-0x10", -16}, Row{u"X7", 7}})
    EXPECT_EQ(TryStrToInt64(row.text), row.value) << ToUtf8(row.text);
  for (const char16_t* text :
       {u"9223372036854775808", u"$8000000000000000", u"99999999999999999999999", u"", u"-", u"$",
        u"0x", u"- 1", u"+-1", u"1 ", u"1.0", u"1A", u"$G"}) {
    EXPECT_EQ(TryStrToInt64(text), std::nullopt) << ToUtf8(text);
  }
}

TEST(StrToInt, FailsBeyondThirtyTwoBitsAndNamesTheText) {
  EXPECT_EQ(TryStrToInt(u"2147483647"), 2147483647);
  EXPECT_EQ(TryStrToInt(u"2147483648"), std::nullopt);
  EXPECT_EQ(TryStrToInt(u"-2147483648"), -2147483647 - 1);
  EXPECT_EQ(TryStrToInt(u"-2147483649"), std::nullopt);
  EXPECT_EQ(TryStrToInt(u"$FFFFFFFF"), std::nullopt);
  EXPECT_EQ(StrToIntDef(u"12x", 5), 5);
  EXPECT_EQ(ErrorOf<EConvertError>([] { StrToInt(u"1 2"); }), "'1 2' is not a valid integer value");
  EXPECT_EQ(ErrorOf<EConvertError>([] { StrToInt64(u""); }), "'' is not a valid integer value");
  EXPECT_EQ(ErrorOf<EConvertError>([] { StrToFloat(u"5."); }),
            "'5.' is not a valid floating point value");
}

TEST(StrToFloat, ReadsTheNearestDouble) {
  struct Row {
    const char16_t* text;
    double value;
  };
  for (const Row& row :
       {Row{u" +12.5\t", 12.5}, Row{u".5", 0.5}, Row{u"-.5e1", -5}, Row{u"1E3", 1000},
        Row{u"007.250", 7.25}, Row{u"9007199254740993", 9007199254740992.0},
        Row{u"9007199254740993.0000000000000000000000000001", 9007199254740994.0},
        Row{u"1.7976931348623158e308", 1.7976931348623157e308},
        Row{u"2.2250738585072011e-308", 2.2250738585072011e-308}, Row{u"2e-324", 0},
        Row{u"-1e-99999999999999999999", 0}})
    EXPECT_EQ(TryStrToFloat(row.text, u'.'), row.value) << ToUtf8(row.text);
  EXPECT_FALSE(std::signbit(*TryStrToFloat(u"-0", u'.')));
}

TEST(StrToFloat, RefusesWhatIsNoNumber) {
  for (const char16_t* text : {u"", u".", u"-", u"5.", u"5.e3", u"2e", u"2e+", u"1E2E3", u"1e1.5",
                               u"1,5", u"1 2", u"--1", u"INF", u"nan", u"0x10", u"1f",
                               u"1.7976931348623159e308", u"-1e999999999999999999999", u"\u0661"}) {
    EXPECT_EQ(TryStrToFloat(text, u'.'), std::nullopt) << ToUtf8(text);
    EXPECT_EQ(TryStrToFloat(ToUtf8(text), '.'), std::nullopt) << ToUtf8(text);
  }
}

TEST(StrToFloat, ReadsMillionsOfDigits) {
  const String zeros(1'000'000, u'0');
  EXPECT_EQ(TryStrToFloat(u"0." + zeros + u"1e1000001", u'.'), 1.0);
  EXPECT_EQ(TryStrToFloat(u"1" + zeros + u"e-1000000", u'.'), 1.0);
  EXPECT_EQ(TryStrToFloat(u"1" + zeros, u'.'), std::nullopt);
  EXPECT_EQ(TryStrToFloat(u"9007199254740993." + zeros, u'.'), 9007199254740992.0);
  EXPECT_EQ(TryStrToFloat(u"9007199254740993." + zeros + u"1", u'.'), 9007199254740994.0);
}

TEST(StrToFloat, ReadsBackWhatWasWritten) {
  std::mt19937_64 random(kSeed);
  for (int round = 0; round < 20000; ++round) {
    const double value = RandomDouble(random);
    char text[40];
    const int size = std::snprintf(text, sizeof text, "%.17g", value);
    const std::string_view written(text, static_cast<std::size_t>(size));
    ASSERT_EQ(TryStrToFloat(written, '.'), value) << text << ", seed " << kSeed;
    ASSERT_EQ(TryStrToFloat(FromUtf8(written), u'.'), value) << text << ", seed " << kSeed;
  }
}

TEST(FormatSettings, OverrideHoldsOnItsThreadOnly) {
  const testing::ThreadSettings scope(testing::CommaSettings());
  EXPECT_EQ(FloatToStr(-1.5), u"-1,5");
  EXPECT_EQ(StrToFloat(u"1,5"), 1.5);
  EXPECT_EQ(StrToFloatDef(u"1.5", 7), 7);
  EXPECT_EQ(FormatFloat(u"#,##0.00", 1234.5), u"1.234,50");
  std::thread([] { EXPECT_EQ(&FormatSettings(), &ProcessFormatSettings()); }).join();
}

TEST(Round, SendsHalvesToEven) {
  EXPECT_EQ(Round(0.5), 0);
  EXPECT_EQ(Round(1.5), 2);
  EXPECT_EQ(Round(-2.5), -2);
  EXPECT_EQ(Trunc(-2.9), -2);
  EXPECT_EQ(Trunc(-0x1p63), std::numeric_limits<std::int64_t>::min());
  EXPECT_THROW(Round(0x1p63), EInvalidOp);
  EXPECT_THROW(Trunc(std::numeric_limits<double>::quiet_NaN()), EInvalidOp);
}

}  // namespace
}  // namespace zentavo
