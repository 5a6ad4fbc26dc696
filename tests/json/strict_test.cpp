// Strict JSON, all of which the reader accepts, and what becomes of it when it is damaged.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"
#include "zentavo/json/tokener.h"

namespace zentavo {
namespace {

struct Strict {
  std::string_view text;     // UTF-8
  std::string_view compact;  // what is written for it
};

using namespace std::string_view_literals;

constexpr Strict kTexts[] = {
    // Structure and blanks.
    {"[]", "[]"},
    {"{}", "{}"},
    {" [ ] ", "[]"},
    {"\t\r\n{\n}\r\t ", "{}"},
    {"[[]]", "[[]]"},
    {"[{}]", "[{}]"},
    {"[[],{},[{}],[[[]]]]", "[[],{},[{}],[[[]]]]"},
    {"[1,\n2\r,\t3 ]", "[1,2,3]"},
    {"{\"a\" : 1 ,\n\t\"b\"\r:2}", R"({"a":1,"b":2})"},
    {"{\"a\":{\"b\":{\"c\":[{\"d\":null}]}}}", R"({"a":{"b":{"c":[{"d":null}]}}})"},
    {"[null,true,false]", "[null,true,false]"},
    {"[ null , true , false ]", "[null,true,false]"},
    {"[\n  null\n]", "[null]"},
    {"{\"a\":1,\"b\":2,\"a\":3}", R"({"a":1,"b":2,"a":3})"},
    {"{\"a\":1,\"a\":1}", R"({"a":1,"a":1})"},
    {"{\"\":0}", R"({"":0})"},
    {"{\"\":{\"\":[]}}", R"({"":{"":[]}})"},
    {"[\"\",[\"\"],\"\"]", R"(["",[""],""])"},
    {"{\"true\":true,\"null\":null,\"1\":1}", R"({"true":true,"null":null,"1":1})"},
    // Any value at the top.
    {"null", "null"},
    {" true\n", "true"},
    {"false", "false"},
    {"\"x\"", "\"x\""},
    {"\"\"", "\"\""},
    {"42", "42"},
    {" -0.5 ", "-0.500000"},
    {"-1", "-1"},
    // Numbers.
    {"[0,-0,1,-1,10,-10]", "[0,0,1,-1,10,-10]"},
    {"[123456789,-123456789]", "[123456789,-123456789]"},
    {"[2147483647,-2147483648]", "[2147483647,-2147483648]"},
    {"[2147483648,-2147483649]", "[2147483648.000000,-2147483649.000000]"},
    {"[0.0,-0.0,0.5,-0.25]", "[0.000000,0.000000,0.500000,-0.250000]"},
    {"[0e1,0E+1,0e-1,-0e0]", "[0.000000,0.000000,0.000000,0.000000]"},
    {"[1e0,1E1,1e+2,1E-1,20e1]", "[1.000000,10.000000,100.000000,0.100000,200.000000]"},
    {"[123e45]", "[123000000000000000000000000000000000000000000000.000000]"},
    {"[1.5e3,1.25E-2,-2.5e+1]", "[1500.000000,0.012500,-25.000000]"},
    {"[1e-10,1.0E-28,1e-400]", "[0.000000,0.000000,0.000000]"},
    {"[0.1234565,0.1234564999,-0.1234565]", "[0.123457,0.123456,-0.123457]"},
    {"[99999.9999994,999999.9999995]", "[99999.999999,1000000.000000]"},
    {"[123456789012345.1]", "[123456789012345.100000]"},
    {"[0.000001,0.0000005,0.00000049]", "[0.000001,0.000001,0.000000]"},
    {"[1 ,2\t,3\n]", "[1,2,3]"},
    // Strings.
    {R"(["\"\\\/\b\f\n\r\t"])", R"(["\"\\/\b\f\n\r\t"])"},
    {R"(["\u0041\u0061\u0030"])", R"(["Aa0"])"},
    {R"(["\u00e9\u00E9\u0391\u20AC"])", R"(["\u00E9\u00E9\u0391\u20AC"])"},
    {R"(["\uD83D\uDE39","\ud83d\ude39"])", R"(["\uD83D\uDE39","\uD83D\uDE39"])"},
    {R"(["\uD800","\uDC00","\uDC00\uD800"])", R"(["\uD800","\uDC00","\uDC00\uD800"])"},
    {R"(["\uD800\n","\uDBFFx"])", R"(["\uD800\n","\uDBFFx"])"},
    {R"(["\uFFFF\uFFFE\uFDD0\u0000"])", R"(["\uFFFF\uFFFE\uFDD0\u0000"])"},
    {R"(["\u005C\u0022\u002F\u003c/"])", R"(["\\\"/\u003C\/"])"},
    {R"(["\\u0041","\\n","\\\\"])", R"(["\\u0041","\\n","\\\\"])"},
    {R"({"\u0061\tb":"\"","\\":1})", R"({"a\tb":"\"","\\":1})"},
    {"[\"\xCE\xB1\xCF\x89 a\"]", R"(["\u03B1\u03C9\u0020a"])"},
    {"[\"\xE2\x82\xAC\xE2\x80\xA8\xE2\x80\xA9\"]", R"(["\u20AC\u2028\u2029"])"},
    {"[\"\xF0\x9F\x98\xB9\",\"\xF4\x8F\xBF\xBF\"]", R"(["\uD83D\uDE39","\uDBFF\uDFFF"])"},
    {"[\"\xEF\xBB\xBF\",\"\xC2\xA0\x7F\"]", R"(["\uFEFF","\u00A0\u007F"])"},
    {"[\"\xEF\xBF\xBF\xED\x9F\xBF\xEE\x80\x80\"]", R"(["\uFFFF\uD7FF\uE000"])"},
    {"[\"a/b <b></b> //c /*d*/ #e\"]",
     R"(["a/b\u0020\u003Cb\u003E\u003C\/b\u003E\u0020//c\u0020/*d*/\u0020\u0023e"])"},
    {"[\"{}[],:;=>\",'']", R"(["\u007B\u007D\u005B\u005D\u002C\u003A\u003B\u003D\u003E",""])"},
    {"{\"\xCE\x9A\xCE\xBB\xCE\xB5\xCE\xB9\xCE\xB4\xCE\xAF\":1}",
     R"({"\u039A\u03BB\u03B5\u03B9\u03B4\u03AF":1})"},
    {"[\"exactly8\",\"exactly16 units.\",\"1234567\",\"123456789\"]",
     R"(["exactly8","exactly16\u0020units.","1234567","123456789"])"},
    {"{\"\\u0000\":\"\\u0000\"}", R"({"\u0000":"\u0000"})"},
    {"\xEF\xBB\xBF{\"mark\":true}", R"({"mark":true})"},
};

std::string Join(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) text += part;
  return text;
}

TEST(StrictJSON, IsAccepted) {
  for (const Strict& row : kTexts) {
    const auto value = ReadJSONUtf8(row.text);
    EXPECT_EQ(ToUtf8(valueToString(value.get())), row.compact) << row.text;
    EXPECT_EQ(valueToString(ReadJSON(StringView(FromUtf8(row.text))).get()),
              valueToString(value.get()))
        << row.text;
  }
}

TEST(StrictJSON, IsTheSameWhereverItStands) {
  for (const Strict& row : kTexts) {
    const std::string_view text = row.text.substr(row.text.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    const TJSONArray array = TJSONArray::FromUtf8(Join({"[", text, ",", text, "\n]"}));
    const TJSONObject object = TJSONObject::FromUtf8(Join({"{\"k\":", text, "}"}));
    EXPECT_EQ(array.toUtf8(), Join({"[", row.compact, ",", row.compact, "]"})) << row.text;
    EXPECT_EQ(object.toUtf8(), Join({"{\"k\":", row.compact, "}"})) << row.text;
    EXPECT_EQ(object.toUtf8(), ToUtf8(object.toString())) << row.text;
  }
}

// Written, read again and cloned it is equal, but for decimals beyond the sixth.
TEST(StrictJSON, ComesBackFromItsTextForms) {
  for (const Strict& row : kTexts) {
    const auto value = ReadJSON(StringView(FromUtf8(row.compact)));
    for (const std::int32_t indent : {0, 1, 4}) {
      const String text = valueToString(value.get(), indent);
      EXPECT_TRUE(ReadJSON(StringView(text))->equals(*value)) << row.text;
    }
    EXPECT_EQ(valueToString(value->Clone().get()), FromUtf8(row.compact)) << row.text;
    EXPECT_EQ(value->Clone()->hash(), value->hash()) << row.text;
  }
}

struct Number {
  const char* text;
  double value;
};

constexpr double kLeast = std::numeric_limits<double>::denorm_min();

constexpr Number kNumbers[] = {
    {"0.1", 0.1},
    {"0.30000000000000004", 0.30000000000000004},
    {"4.35", 4.35},
    {"100.005", 100.005},
    {"123456789012345", 123456789012345.0},
    {"1234567890.12345", 1234567890.12345},
    {"12345678901.123456", 12345678901.123456},
    {"9007199254740992", 9007199254740992.0},
    {"9007199254740993", 9007199254740992.0},
    {"9007199254740993.0", 9007199254740992.0},
    {"9007199254740995", 9007199254740996.0},
    {"123456789012345678", 123456789012345678.0},
    {"1234567890123456789012345678901234567890", 1.2345678901234568e39},
    {"1e22", 1e22},
    {"1e23", 1e23},
    {"1.7976931348623157e308", 1.7976931348623157e308},
    {"2.2250738585072011e-308", 2.2250738585072011e-308},
    {"5e-324", kLeast},
    {"2.4703282292062328e-324", kLeast},
    {"2.4703282292062327e-324", 0},
    {"0.000000000000000000000000000000000000000000000001e48", 1},
    {"1000000000000000000000000000000000000000000000000e-48", 1},
    {"8.41e21", 8.41e21},
    {"-9.5e-7", -9.5e-7},
    {"1e-22", 1e-22},
    {"0.000000000000001", 1e-15},
    {"000001.5", 1.5},
    {"-000001.5", -1.5},
};

TEST(StrictJSON, NumbersAreTheNearestDoubles) {
  for (const Number& row : kNumbers) {
    EXPECT_EQ(TJSONArray::FromUtf8(Join({"[", row.text, "]"})).getDouble(0), row.value) << row.text;
    const auto alone = ReadJSONUtf8(row.text);
    EXPECT_EQ(dynamic_cast<const _Number&>(*alone).doubleValue(), row.value) << row.text;
  }
}

TEST(StrictJSON, EveryDoubleComesThrough) {
  std::mt19937_64 random(20260102);
  for (int round = 0; round < 20000; ++round) {
    const auto value = std::bit_cast<double>(random());
    if (!(value - value == 0)) continue;  // an infinity or NaN
    char digits[32];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const std::string text = Join({"[", std::string_view(digits, end), " ]"});
    const double read = TJSONArray::FromUtf8(text).getDouble(0);
    ASSERT_EQ(read, value) << text;
  }
}

// A decimal as it was read is written as the double that it stands for.
TEST(StrictJSON, DecimalsAreWrittenAsTheirDoubles) {
  std::mt19937_64 random(20260103);
  for (int round = 0; round < 20000; ++round) {
    const std::string digits = std::to_string(random() % 1000000000000000u >> random() % 50);
    const std::string_view whole =
        std::string_view(digits).substr(0, static_cast<std::size_t>(random() % digits.size()));
    const std::string text = Join({random() % 2 == 0 ? "-" : "", whole.empty() ? "0" : whole, ".",
                                   std::string_view(digits).substr(whole.size())});
    const TJSONArray array = TJSONArray::FromUtf8(Join({"[", text, "]"}));
    const double value = StrToFloat(FromUtf8(text), TFormatSettings());
    ASSERT_EQ(array.getDouble(0), value) << text;
    ASSERT_EQ(array.join(u""), _Double(value).toString()) << text;
  }
}

// The value's text, or the error's: the same from UTF-8 and from UTF-16.
AnsiString OutcomeOf(const std::function<std::unique_ptr<TZAbstractObject>()>& read) {
  try {
    return ToUtf8(valueToString(read().get()));
  } catch (const ParseException& error) {
    const auto text = [](std::int32_t number) { return std::to_string(number); };
    return Join({ToUtf8(error.Message()), "|", text(error.Position()), "|", text(error.Line()), "|",
                 text(error.Column())});
  }
}

void CheckBothForms(const std::string& bytes) {
  const String text = FromUtf8(bytes);
  const AnsiString from_utf8 = OutcomeOf([&] { return ReadJSONUtf8(bytes); });
  ASSERT_EQ(from_utf8, OutcomeOf([&] { return ReadJSON(StringView(text)); })) << bytes;
}

TEST(DamagedJSON, CutAnywhereIsAValueOrAnError) {
  for (const Strict& row : kTexts) {
    for (std::size_t at = 0; at <= row.text.size(); ++at) {
      CheckBothForms(std::string(row.text.substr(0, at)));
      CheckBothForms(std::string(row.text.substr(at)));
    }
  }
}

TEST(DamagedJSON, WithAByteChangedIsAValueOrAnError) {
  constexpr std::string_view kBytes =
      "\"'\\{}[],:;=>#/*\n\r \0-+.e0u\x80\xB1\xCE\xE2\xED\xEF\xF0\xFF"sv;
  for (const Strict& row : kTexts) {
    for (std::size_t at = 0; at < row.text.size(); ++at) {
      std::string text(row.text);
      for (const char byte : kBytes) {
        text[at] = byte;
        CheckBothForms(text);
      }
    }
  }
}

TEST(DamagedJSON, RandomPiecesAreAValueOrAnError) {
  constexpr const char* kPieces[] = {
      "{",    "}",    "[",   "]",    ",",    ";",      ":",
      "=",    "=>",   "\"",  "'",    "\\",   "\\u00e", "\xCE\xB1",
      "true", "NULL", "012", "0x1F", "-1.5", "1e5",    "a b",
      "//",   "/*",   "*/",  "#",    "\n",   " ",      "\xF0\x9F\x98\xB9",
      "\xFF", "\xE2", "{a:", "[1,",  "'x':", "],",     "},"};
  std::mt19937 random(20260104);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    const auto count = 1 + random() % 12;
    for (std::size_t piece = 0; piece < count; ++piece) {
      text += kPieces[random() % std::size(kPieces)];
    }
    CheckBothForms(text);
  }
}

}  // namespace
}  // namespace zentavo
