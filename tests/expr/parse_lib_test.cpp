#include "zentavo/expr/parse_lib.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "support/thread_settings.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo {
namespace {

// What an operation gives, or the message of what it raises.
std::string Outcome(const std::function<String()>& operation) {
  try {
    return ToUtf8(operation());
  } catch (const Exception& error) {
    return std::string("! ") + error.what();
  }
}

using Scan = String (*)(StringView text, std::int32_t& position);

String Block(StringView text, std::int32_t& position) {
  return GetBlock(text, position, u'(', u')');
}

String Parameters(StringView text, std::int32_t& position) {
  TStringList list;
  const std::int32_t start = position;
  GetFunctionParameters(text, position, list);
  EXPECT_EQ(CountFunctionParameters(text, start), list.Count());
  String joined;
  for (std::int32_t index = 0; index < list.Count(); ++index) joined += u"<" + list[index] + u">";
  return joined;
}

struct ScanRow {
  Scan scan;
  const char16_t* text;
  std::int32_t start;
  const char* outcome;
  std::int32_t end;
};

constexpr ScanRow kScans[] = {
    {GetName, u" \t\r\n_a1.b", 1, "_a1", 8},
    {GetName, u"  1a", 1, "", 3},
    {GetName, u"\u00A0a", 1, "", 1},
    {GetName, u"ab", -5, "ab", 3},
    {GetName, u"ab", 9, "", 9},
    {Block, u"f(a(b)c)d", 2, "a(b)c", 8},
    {Block, u"(')'a)", 1, "')'a", 6},
    {Block, u"(a", 1, "! Expected '')''", 1},
    {Block, u"(a')", 1, "! Expected '')''", 1},
    {Block, u"(", 1, "! Expected '')''", 1},
    {Block, u"((a)", 1, "(a", 4},
    {GetParameter, u"  a b , c", 1, "a b", 7},
    {GetParameter, u"a(b,c)[d,e]'f,)',g", 1, "a(b,c)[d,e]'f,)'", 17},
    {GetParameter, u"[ a,) ] , b", 1, " a,) ", 9},
    {GetParameter, u"", 1, "", 1},
    {GetParameter, u"a]b", 1, "a", 2},
    {GetParameter, u"'ab", 1, "'ab", 4},
    {GetParameter, u"f(a", 1, "! Expected '')''", 1},
    {Parameters, u" (a, f(b, c), [d, e]) x", 1, "<a><f(b, c)><d, e>", 22},
    {Parameters, u"()", 1, "<>", 3},
    {Parameters, u"(,)", 1, "<><>", 4},
    {Parameters, u"a(b)", 1, "", 1},
    {Parameters, u"([a] b)", 1, "! Expected '',' or ')''", 1},
    {Parameters, u"(a, b", 1, "! Expected '')''", 1},
    {Parameters, u"(a ]", 1, "! Expected '',' or ')''", 1},
    {Parameters, u"(", 1, "! Expected '')''", 1},
    {GetInstruction, u"  a := 'x;y' ; b", 1, "a := 'x;y' ", 14},
    {GetInstruction, u"a 'b;", 1, "a 'b;", 6},
    {ExtractCommaName, u" a b , c", 1, "a b", 7},
    {ExtractCommaName, u"a", 1, "a", 2},
    {ExtractCommaName, u"a", 7, "", 7},
};

TEST(ParseLib, ScansFromThePositionToTheFirstUnitNotTaken) {
  for (const ScanRow& row : kScans) {
    SCOPED_TRACE(ToUtf8(row.text));
    std::int32_t position = row.start;
    EXPECT_EQ(Outcome([&] { return row.scan(row.text, position); }), row.outcome);
    EXPECT_EQ(position, row.end);
  }
}

TEST(ParseLib, AFailedListKeepsTheParametersRead) {
  TStringList list;
  std::int32_t position = 1;
  EXPECT_THROW(GetFunctionParameters(u"(a, b", position, list), EScriptException);
  EXPECT_EQ(list.CommaText(), u"a,b");
}

TEST(ParseLib, BlocksNestToTheLimit) {
  const auto nested = [](std::int32_t depth) {
    const auto count = static_cast<std::size_t>(depth);
    return String(count, u'(') + String(count, u')');
  };
  std::int32_t position = 1;
  SkipBlock(nested(kMaxBlockNesting), position, u'(', u')');
  EXPECT_EQ(position, 2 * kMaxBlockNesting);
  const auto scan = [&](const String& text) {
    return Outcome([&] { return GetParameter(text, position = 1); });
  };
  EXPECT_EQ(scan(nested(kMaxBlockNesting + 1)), "! Blocks nested too deeply");
  EXPECT_EQ(scan(String(10'000'000, u'[')), "! Blocks nested too deeply");
}

TEST(GetStringToken, CutsAScriptIntoTokens) {
  const StringView text = u" a_1 // note\r 12 12.5. 'x y' <'open";
  std::string dump;
  TStringTokenType type = ttNone;
  for (std::int32_t position = 1; type != ttEndOfTokens;) {
    const String token = GetStringToken(text, position, type);
    dump += std::to_string(type) + ":" + ToUtf8(token) + " ";
  }
  EXPECT_EQ(dump, "1:a_1 3:12 4:12.5 2:. 5:x y 2:< 5:open 7: ");
}

TEST(GetStringToken, TakesTheLastUnitAsItIs) {
  TStringTokenType type = ttNone;
  std::int32_t position = 2;
  EXPECT_EQ(GetStringToken(u"a ", position, type), u" ");
  EXPECT_EQ(type, ttSymbol);
  position = 1;
  EXPECT_EQ(GetStringToken(u"//a", position, type), u"");
  EXPECT_EQ(type, ttEndOfTokens);
}

TEST(ParseLib, FindsSections) {
  TStringList sections;
  sections.SetOwnsObjects(true);
  auto owned = std::make_unique<TObject>();
  TObject* object = owned.get();
  sections.AddObject(u"Main", std::move(owned));
  EXPECT_EQ(GetSection(sections, u"main", true), object);
  EXPECT_EQ(GetSection(sections, u"x", false), nullptr);
  EXPECT_EQ(Outcome([&] { return GetSection(sections, u"x", true), String(); }),
            "! Section 'x' not found !");
  EXPECT_EQ(Outcome([]() -> String { Expected(u"then"); }), "! Expected 'then'");
}

TEST(ParseLib, TakesPlainTextsApart) {
  EXPECT_EQ(RemoveQuotes(u"''"), u"");
  EXPECT_EQ(RemoveQuotes(u"'"), u"'");
  EXPECT_EQ(ReadString(u"'a'b'"), u"a'b");
  String first = u"A.B.C";
  String second;
  SplitFieldPath(first, first, second);
  EXPECT_EQ(first + u"|" + second, u"A|B.C");
  SplitFieldPath(u"A", first, second);
  EXPECT_EQ(first + u"|" + second, u"A|");
  EXPECT_TRUE(IsLegalToken(u"_a9"));
  EXPECT_FALSE(IsLegalToken(u"9a") || IsLegalToken(u"") || IsLegalToken(u"a b"));
}

TEST(ScriptMessage, GoesByNumberAndText) {
  EXPECT_EQ(ScriptMessage(65520), u"Operation aborted");
  EXPECT_EQ(ScriptMessage(smUnexpectedSymbol, u")"), u"Unexpected symbol ')'");
  EXPECT_EQ(ScriptMessage(65527), u"Missing operator or semicolon");
  EXPECT_EQ(ScriptMessage(65519), u"");
  EXPECT_EQ(ScriptMessage(65528), u"");
}

TEST(StrToVariant, GivesTheTypeThatTheLiteralShows) {
  struct Row {
    const char16_t* text;
    VariantKind kind;
    const char* outcome;
  };
  const testing::ThreadSettings settings{TFormatSettings()};
  for (const Row& row :
       {Row{u"  ", VariantKind::kNull, ""}, Row{u" nULL ", VariantKind::kNull, ""},
        Row{u"TRUE", VariantKind::kBoolean, "True"}, Row{u"12", VariantKind::kInteger, "12"},
        Row{u"3000000000", VariantKind::kInt64, "3000000000"},
        Row{u"12.5", VariantKind::kDouble, "12.5"}, Row{u"12.", VariantKind::kDouble, "12"},
        Row{u"#65", VariantKind::kString, "A"}, Row{u"'12'", VariantKind::kString, "12"},
        Row{u"-1", VariantKind::kString, "-1"},
        Row{u"1x", VariantKind::kNull, "! '1x' is not a valid integer value"},
        Row{u"1.2.3", VariantKind::kNull, "! '1.2.3' is not a valid floating point value"},
        Row{u"#65536", VariantKind::kNull, "! Range check error"},
        Row{u"#1.5", VariantKind::kNull, "! '1.5' is not a valid integer value"}}) {
    SCOPED_TRACE(ToUtf8(row.text));
    Variant value = Variant::Null();
    EXPECT_EQ(Outcome([&] { return VarToStr(value = StrToVariant(row.text)); }), row.outcome);
    EXPECT_EQ(value.Kind(), row.kind);
  }
}

TEST(ValueInString, ComparesAsItsOptionSays) {
  EXPECT_TRUE(ValueInString(u"b", u"a, B ,c", vcText));
  EXPECT_TRUE(ValueInString(u"b", u"a,B", 9));
  EXPECT_FALSE(ValueInString(u"b", u"a,B", vcExactText));
  EXPECT_TRUE(ValueInString(2, u"1,2.0", vcNumber));
  EXPECT_FALSE(ValueInString(2, u"1,2.0", vcText));
  EXPECT_TRUE(ValueInString(2.5, u"x,2.5", vcExactText));
  EXPECT_FALSE(ValueInString(u"x", u"x,y", vcNumber));
  EXPECT_FALSE(ValueInString(Variant::Null(), u"", vcText));
  EXPECT_TRUE(ValueInString(Variant::Null(), u"a,,b", vcText));
}

}  // namespace
}  // namespace zentavo
