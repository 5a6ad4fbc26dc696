// The text form of single values and of large trees.
#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>

#include "tests/support/thread_settings.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/stream.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"

namespace zentavo {
namespace {

// A value of a host's own, which is written as the text that it is.
class HostText : public TZAbstractObject {
 public:
  explicit HostText(String text) : text_(std::move(text)) {}
  String toString() const override { return text_; }

 private:
  String text_;
};

// Quoting as it is laid down, one unit after the other.
String PlainQuote(StringView text) {
  constexpr StringView kSafe = u"!$'()*-.@_/";
  constexpr StringView kLetters = u"\"\"\\\\\bb\tt\nn\ff\rr";
  String quoted(1, u'"');
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char16_t unit = text[index];
    const std::size_t letter = kLetters.find(unit) / 2 * 2;
    const bool is_letter = (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z' && unit < 0x80;
    if (unit == u'/' && index > 0 && text[index - 1] == u'<') {
      quoted += u"\\/";
    } else if (is_letter || IsDigit(unit) || kSafe.find(unit) != StringView::npos) {
      quoted += unit;
    } else if (letter < kLetters.size() && kLetters[letter] == unit) {
      quoted += u'\\';
      quoted += kLetters[letter + 1];
    } else {
      quoted += u"\\u";
      quoted += IntToHex(unit, 4);
    }
  }
  quoted += u'"';
  return quoted;
}

TEST(Quote, AgreesWithThePlainWayForEveryUnit) {
  for (char32_t unit = 0; unit < 0x10000; ++unit) {
    const String text(1, static_cast<char16_t>(unit));
    ASSERT_EQ(quote(text), PlainQuote(text)) << static_cast<unsigned>(unit);
  }
}

TEST(Quote, AgreesWithThePlainWayForRandomTexts) {
  constexpr StringView kUnits =
      u"aZ09/</<\\\"\b\n\t \u0391\u03B1\u07FF\u0800\u20AC\xD800\xDC00\xFFFF";
  std::mt19937 random(21);
  for (int round = 0; round < 3000; ++round) {
    String text(random() % (round < 2900 ? 40 : 5000), u'x');
    for (char16_t& unit : text) unit = kUnits[random() % kUnits.size()];
    ASSERT_EQ(quote(text), PlainQuote(text)) << ToUtf8(text);
  }
}

// What is written in a way of its own, at every place of texts that are written in blocks and
// parts.
TEST(Quote, AgreesWithThePlainWayInEveryPlace) {
  for (const StringView pair : {u"</", u"<<", u"x/", u"\u20AC/", u"\x7FF\x800"}) {
    for (std::size_t place = 0; place < 300; ++place) {
      String text(place, u'a');
      for (std::size_t at = 0; at < place; at += 3) text[at] = u'\u03B1';
      text += pair;
      ASSERT_EQ(quote(text), PlainQuote(text)) << place;
      text.append(u"</ behind it");
      ASSERT_EQ(quote(text), PlainQuote(text)) << place;
    }
  }
}

TEST(Integers, OfEveryLength) {
  std::int64_t power = 1;
  for (int digits = 0; digits < 10; ++digits, power *= 10) {
    for (const std::int64_t value : {power - 1, power, power + 1, 2 * power - 1}) {
      const auto number = static_cast<std::int32_t>(value);
      EXPECT_EQ(TJSONArray().put(number).join(u""), IntToStr(number));
      EXPECT_EQ(TJSONArray().put(-number).join(u""), IntToStr(-number));
    }
  }
  EXPECT_EQ(TJSONArray().put(std::numeric_limits<std::int32_t>::min()).toString(),
            u"[-2147483648]");
}

TEST(Doubles, OfEverySize) {
  TJSONArray array;
  array.put(1e300).put(-1e21).put(std::numeric_limits<double>::infinity());
  array.put(_Double::NaN()).put(-0.0).put(0.9999995).put(-0.9999994).put(1e15).put(123456.789);
  const String text = array.toString();
  EXPECT_EQ(text.substr(0, 6), u"[10000");
  EXPECT_EQ(text.substr(309),
            u",-1000000000000000000000.000000,INF,NAN,0.000000,1.000000,-0.999999,"
            u"1000000000000000.000000,123456.789000]");
}

// Six decimals of the shortest digits that read back as the value; halves go away from zero.
String PlainDouble(double value) {
  char text[400];
  const auto end =
      std::to_chars(text, text + sizeof text, std::abs(value), std::chars_format::fixed).ptr;
  std::string digits(text, end);
  if (digits.find('.') == std::string::npos) digits += '.';
  const std::size_t size = digits.find('.') + 7;
  bool up = digits.size() > size && digits[size] >= '5';
  digits.resize(size, '0');
  for (std::size_t at = size; up && at-- > 0;) {
    if (digits[at] == '.') continue;
    up = digits[at] == '9';
    digits[at] = up ? '0' : static_cast<char>(digits[at] + 1);
  }
  if (up) digits.insert(0, 1, '1');
  const bool zero = digits.find_first_not_of("0.") == std::string::npos;
  return FromUtf8(value < 0 && !zero ? '-' + digits : digits);
}

TEST(Doubles, AgreeWithThePlainWay) {
  std::mt19937_64 random(20240501);
  for (int round = 0; round < 40000; ++round) {
    const auto digits = static_cast<double>(random() % 1000000000000u >> random() % 40);
    double value = digits / std::pow(10.0, static_cast<double>(random() % 12));
    if (round % 2 == 0) value = std::ldexp(static_cast<double>(random() >> 11), -(round % 90));
    if (random() % 2 == 0) value = -value;
    ASSERT_EQ(_Double(value).toString(), PlainDouble(value)) << value;
  }
  for (const double value : {0.0000005, -0.0000004, 2.0000015, -9.9999995, 0.9999995, 1e15}) {
    EXPECT_EQ(_Double(value).toString(), PlainDouble(value)) << value;
  }
}

TEST(Locale, ChangesNothing) {
  const testing::ThreadSettings comma(testing::CommaSettings());
  const TJSONArray array(u"[1.5, -0.25, 1e3, 1234567.125, '2.5', '2,5', 1,5, 1234567890123456789]");
  EXPECT_EQ(array.toString(),
            u"[1.500000,-0.250000,1000.000000,1234567.125000,\"2.5\",\"2\\u002C5\",1,5,"
            u"1234567890123456800.000000]");
  EXPECT_EQ(array.getDouble(4), 2.5);
  EXPECT_EQ(array.optDouble(5, -1), -1);
  EXPECT_EQ(_Double(u"1.25").toString(), u"1.250000");
  EXPECT_EQ(array.getString(3), u"1234567.125000");
}

// Trees whose text is many times larger than the first guess from their beginning, or smaller.
TEST(Writer, TextsOfEverySizeComeBack) {
  for (const int small : {0, 1, 10, 1000, 20000}) {
    for (const std::size_t large : {0u, 900u, 1030u, 5000u, 200000u}) {
      TJSONArray array;
      array.put(String(large, u' '));
      for (int index = 0; index < small; ++index) array.put(index);
      array.put(String(large, u'x'));
      const String text = array.toString();
      ASSERT_EQ(TJSONArray(text), array) << small << ' ' << large;
      ASSERT_EQ(array.toUtf8(), ToUtf8(text));
      ASSERT_LE(text.capacity(), text.size() * 2 + 100);
    }
  }
}

TEST(Writer, EveryValueMayStandAtTheEndOfTheFirstRoom) {
  for (std::size_t before = 850; before < 1100; ++before) {
    TJSONArray array;
    array.put(String(before, u'a'));
    array.put(-1234567).put(1e40).put(true).put(std::make_unique<HostText>(String(300, u'\u0391')));
    array.put(TJSONObject(u"{k:{},l:[],m:[[-0.5]]}"));
    String expected(1, u'[');
    expected += quote(String(before, u'a'));
    expected += u",-1234567,1";
    expected += String(40, u'0');
    expected += u".000000,true,";
    expected += quote(String(300, u'\u0391'));
    expected += u",{\"k\":{},\"l\":[],\"m\":[[-0.500000]]}]";
    ASSERT_EQ(array.toString(), expected) << before;
  }
}

TEST(Writer, IndentsByAnyNumberOfBlanks) {
  const TJSONArray array(u"[1,[2,3]]");
  const String text = array.toString(3000, 5);
  EXPECT_EQ(text.size(), 3005u * 2 + 6005 * 2 + 3005 + 5 + 15);
  EXPECT_EQ(TJSONArray(text), array);
  EXPECT_EQ(array.toString(-3, 2), u"[\n1,\n[\n2,\n3\n]\n  ]");
}

TEST(Writer, WritesHostValuesAsTexts) {
  TJSONObject object;
  object.put(u"h", std::make_unique<HostText>(u"a b"));
  EXPECT_EQ(object.toString(), uR"({"h":"a\u0020b"})");
  EXPECT_EQ(object.getString(u"h"), u"a b");
  EXPECT_EQ(valueToString(nullptr), u"null");
  object.put(u"n", std::make_unique<HostText>(u"12.5"));
  EXPECT_EQ(object.getInt(u"n"), 12);
}

TEST(Streams, ReadFromTheirPositionAndWriteUtf8) {
  TMemoryStream stream;
  stream.WriteBuffer("skip{\"a\":[\"\xCE\xB1\"]}", 17);
  stream.SetPosition(4);
  const TJSONObject object = TJSONObject::FromStream(stream);
  EXPECT_EQ(object.toString(), uR"({"a":["\u03B1"]})");
  stream.SetPosition(9);
  EXPECT_EQ(TJSONArray::FromStream(stream).getString(0), u"\u03B1");
  const TJSONArray large(u"[" + String(99999, u',') + u"]");
  TMemoryStream target;
  large.SaveToStream(target);
  target.SetPosition(0);
  EXPECT_EQ(*ReadJSON(target), large);
}

}  // namespace
}  // namespace zentavo
