#include "zentavo/json/tokener.h"

#include <gtest/gtest.h>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/text_form.h"

namespace zentavo {
namespace {

struct Reading {
  const char16_t* text;
  const char16_t* compact;
};

constexpr Reading kReadings[] = {
    {u"{a:1; b=2, c=>3,}", uR"({"a":1,"b":2,"c":3})"},
    {u"[1,,2]", u"[1,null,2]"},
    {u"[1,2,]", u"[1,2]"},
    {u"[1;2;]", u"[1,2]"},
    {u"[,]", u"[null]"},
    {u"[]", u"[]"},
    {u" { } ", u"{}"},
    {u"/* c */ {\"x\": true} # end", uR"({"x":true})"},
    {u"[1 // one\r, 2 # two\n, /**/ 3]", u"[1,2,3]"},
    {u"[010, 0x1F, 0X1f, 08, 0, 00, 0x, -010]", uR"([8,31,31,8,0,0,"0x",-10])"},
    {u"[1.5, 1e3, 12abc, +5, -7, .5, 5., ., -., 1.5.]",
     uR"([1.500000,1000.000000,"12abc",5,-7,0.500000,5.000000,".","-.","1.5."])"},
    {u"[2147483647, -2147483648, 2147483648, 0x7FFFFFFF, 0xFFFFFFFF, 040000000000]",
     u"[2147483647,-2147483648,2147483648.000000,2147483647,\"0xFFFFFFFF\",40000000000.000000]"},
    {u"[1e400, 1e-400, -0, -0.0, 123456789012345678901234567890]",
     u"[\"1e400\",0.000000,0,0.000000,123456789012345680000000000000.000000]"},
    {u"[TRUE, False, nULL, truely, 'it''s']", nullptr},
    {u"[TRUE, False, nULL, truely]", uR"([true,false,null,"truely"])"},
    {u"['say \"hi\"', \"it's\"]", u"[\"say\\u0020\\\"hi\\\"\",\"it's\"]"},
    {u"{first name : Ann  Lee , 2: x, 1.5: y, null: z, [1]: w}",
     u"{\"first\\u0020name\":\"Ann\\u0020\\u0020Lee\",\"2\":\"x\",\"1.500000\":\"y\",\"null\":"
     u"\"z\","
     u"\"\\u005B1\\u005D\":\"w\"}"},
    {u"{a:1,A:2,a:3}", uR"({"a":1,"A":2,"a":3})"},
    {u"{\"\":1}", uR"({"":1})"},
    {u"\"\\b\\t\\n\\f\\r\\u0041\\/\\\\\\'\\x\\\"\"", u"\"\\b\\t\\n\\f\\rA/\\\\'x\\\"\""},
    {u"'\\ud83d\\uDE00\\ud800'", u"\"\\uD83D\\uDE00\\uD800\""},
    {u"'a\\\nb'", u"\"a\\nb\""},
    {u"\xFEFF[1]", u"[1]"},
    {u"{a = > b}", uR"({"a":"\u003E\u0020b"})"},
    {u"{a:{b:[{},[]]}}", uR"({"a":{"b":[{},[]]}})"},
};

TEST(JSONTokener, ReadsLenientTexts) {
  for (const Reading& row : kReadings) {
    if (row.compact == nullptr) {
      EXPECT_THROW(ReadJSON(row.text), ParseException) << ToUtf8(row.text);
      continue;
    }
    const auto value = ReadJSON(row.text);
    EXPECT_EQ(ToUtf8(valueToString(value.get())), ToUtf8(row.compact)) << ToUtf8(row.text);
    const auto again = ReadJSON(valueToString(value.get()));
    EXPECT_TRUE(value->equals(*again)) << ToUtf8(row.text);
    EXPECT_EQ(value->hash(), again->hash()) << ToUtf8(row.text);
  }
}

TEST(JSONTokener, ZeroUnitBetweenTokensIsABlank) {
  using namespace std::string_view_literals;
  EXPECT_EQ(ReadJSON(u"[1,\0\0002]"sv)->toString(), u"[1,2]");
}

struct Failure {
  const char16_t* text;
  const char* reason;
  int line, column;
};

constexpr Failure kFailures[] = {
    {u"{a:1 /* open", "Unclosed comment.", 1, 13},
    {u"\"abc", "Unterminated string", 1, 5},
    {u"['a\nb']", "Unterminated string", 1, 4},
    {u"'a\\", "Unterminated string", 1, 4},
    {u"[1,\r\n  :2]", "Missing value.", 2, 3},
    {u"", "Missing value.", 1, 1},
    {u"[1,", "Missing value.", 1, 4},
    {u"{a:", "Missing value.", 1, 4},
    {u"{a:1", R"(Expected a "," or "}")", 1, 5},
    {u"{", "JSON Object must end with \"}\"", 1, 2},
    {u"{\"a\" 1}", "Expected a \":\" after a key", 1, 6},
    {u"{a\n\n/ b}", "Expected a \":\" after a key", 3, 1},
    {u"{'a':'b' 'c'}", R"(Expected a "," or "}")", 1, 10},
    {u"['b' 'c']", R"(Expected a "," or "]")", 1, 6},
    {u"[1}", R"(Expected a "," or "]")", 1, 3},
    {u"'\\u12G4'", "Illegal escape", 1, 6},
    {u"'\\u12", "Illegal escape", 1, 6},
    {u"[1] 2", "Unexpected text after the value", 1, 5},
    {u"{{{{{{a:1}:1}:1}:1}:1}:1}", "Nesting too deep", 1, 6},
};

TEST(JSONTokener, ReportsWhatIsWrongAndWhere) {
  for (const Failure& row : kFailures) {
    try {
      ReadJSON(row.text);
      ADD_FAILURE() << "accepted: " << ToUtf8(row.text);
    } catch (const ParseException& error) {
      EXPECT_EQ(ToUtf8(error.Reason()), row.reason) << ToUtf8(row.text);
      EXPECT_EQ(error.Line(), row.line) << ToUtf8(row.text);
      EXPECT_EQ(error.Column(), row.column) << ToUtf8(row.text);
    }
  }
}

TEST(JSONTokener, ErrorTextHoldsReasonAndDescription) {
  try {
    TJSONArray array(u"{}");
    FAIL();
  } catch (const ParseException& error) {
    EXPECT_EQ(error.Message(),
              u"JSON Array must start with \"[\" JSON Syntax Error :  at character 1 of {}");
    EXPECT_EQ(error.Position(), 1);
  }
  EXPECT_THROW(TJSONObject(u"[]"), ParseException);
}

TEST(JSONTokener, StepsThroughText) {
  JSONTokener tokener(u"ab, cd;x%y");
  EXPECT_EQ(tokener.next(), u'a');
  tokener.back();
  EXPECT_EQ(tokener.toString(), u" at character 0 of ab, cd;x%y");
  EXPECT_EQ(tokener.nextTo(u','), u"ab");
  EXPECT_EQ(tokener.next(u','), u',');
  EXPECT_EQ(tokener.nextTo(u";:"), u"cd");
  EXPECT_EQ(tokener.skipTo(u'#'), 0);
  EXPECT_EQ(tokener.skipTo(u'%'), u'%');
  tokener.skipPast(u"%");
  EXPECT_EQ(tokener.next(1), u"y");
  EXPECT_FALSE(tokener.more());
  EXPECT_EQ(tokener.next(), 0);
  tokener.back();
  EXPECT_FALSE(tokener.more());
  EXPECT_EQ(tokener.syntaxError(u"Odd").Reason(), u"Odd");
  EXPECT_EQ(JSONTokener::unescape(u"a+b%41%4g%"), u"a bA%4g%");
  EXPECT_EQ(JSONTokener::dehexchar(u'f'), 15);
  EXPECT_EQ(JSONTokener::dehexchar(u'g'), -1);
}

TEST(JSONTokener, StepsFailWithTheirTexts) {
  JSONTokener tokener(u"ab");
  const auto reason_of = [](auto step) {
    try {
      step();
    } catch (const ParseException& error) {
      return ToUtf8(error.Reason());
    }
    return AnsiString("nothing raised");
  };
  EXPECT_EQ(reason_of([&] { tokener.next(u'x'); }), "Expected x and instead saw a.");
  EXPECT_EQ(reason_of([&] { tokener.next(2); }), "Substring bounds error");
  EXPECT_EQ(reason_of([&] { tokener.nextString(u'"'); }), "Unterminated string");
}

TEST(JSONTokener, LeavesWhatFollowsAValue) {
  JSONTokener tokener(u"[1, 2] {a: b} tail");
  EXPECT_EQ(TJSONArray(tokener).toString(), u"[1,2]");
  EXPECT_EQ(TJSONObject(tokener).toString(), uR"({"a":"b"})");
  EXPECT_EQ(tokener.nextClean(), u't');
}

// Texts whose runs and escapes begin and end at every distance from the blocks they are read in.
TEST(JSONTokener, StringsComeThroughAtEveryLength) {
  String text;
  for (std::size_t length = 0; length < 600; ++length) {
    TJSONArray array;
    array.put(text).put(StringView(text).substr(length / 2));
    EXPECT_EQ(TJSONArray(array.toString()), array) << length;
    EXPECT_EQ(TJSONArray(u"['" + text + u"']").getString(0), text) << length;
    text.push_back(static_cast<char16_t>(length % 7 == 0 ? u'"' : 0x3A0 + length % 90));
  }
}

TEST(JSONTokener, ReadsUtf8) {
  const auto value = ReadJSONUtf8("\xEF\xBB\xBF{\"\xCE\xB1\": \"\xFF\"}");
  EXPECT_EQ(value->toString(), uR"({"\u03B1":"\uFFFD"})");
  EXPECT_EQ(TJSONObject::FromUtf8("{a:1}").toUtf8(), "{\"a\":1}");
}

}  // namespace
}  // namespace zentavo
