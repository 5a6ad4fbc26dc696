#include "zentavo/genlib/html_text.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zentavo {
namespace {

TEST(XCHToHTML, MakesParagraphsAndLinks) {
  struct Row {
    StringView text, body;
  };
  constexpr Row kRows[] = {
      {u"Hello\r\n<Open$OPEN 1>", u"<p>Hello</p>\r\n<p><a href=\"xcmd:OPEN 1\">Open</a></p>\r\n"},
      {u"", u""},
      {u"a", u"<p>a</p>\r\n"},
      {u"a\n", u"<p>a</p>\r\n"},
      {u"a\r\rb\n\rc", u"<p>a</p>\r\n<p>b</p>\r\n<p>c</p>\r\n"},  // two breaks are one
      {u"\n\n\n", u"<p></p>\r\n<p></p>\r\n"},
      {u"1 & \"2\" > 3", u"<p>1 & \"2\" > 3</p>\r\n"},  // nothing is escaped
      {u"<$>", u"<p><a href=\"xcmd:\"></a></p>\r\n"},
      {u"<a\n>b$c\nd>", u"<p><a href=\"xcmd:c\nd\">a\n>b</a></p>\r\n"},
      {u"<a$b><c$d>", u"<p><a href=\"xcmd:b\">a</a><a href=\"xcmd:d\">c</a></p>\r\n"},
      // What is no link stays text.
      {u"a<b", u"<p>a<b</p>\r\n"},
      {u"<b>$", u"<p><b>$</p>\r\n"},
      {u"<b$c", u"<p><b$c</p>\r\n"},
      {u"<", u"<p><</p>\r\n"},
      {u"<a$b>\n<c$d", u"<p><a href=\"xcmd:b\">a</a></p>\r\n<p><c$d</p>\r\n"},
  };
  for (const Row& row : kRows) {
    EXPECT_EQ(XCHToHTML(row.text), u"<html>\r\n" + String(row.body) + u"</html>")
        << ToUtf8(row.text);
  }
}

// The rules of the page, a unit at a time.
String PlainPage(const String& text) {
  String body;
  String line;
  bool open = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t dollar = text.find(u'$', i);
    const std::size_t greater = dollar == String::npos ? dollar : text.find(u'>', dollar);
    open = true;
    if (text[i] == u'<' && greater != String::npos) {
      line += u"<a href=\"xcmd:" + text.substr(dollar + 1, greater - dollar - 1) + u"\">" +
              text.substr(i + 1, dollar - i - 1) + u"</a>";
      i = greater;
    } else if (text[i] == u'\r' || text[i] == u'\n') {
      if (i + 1 < text.size() && (text[i + 1] == u'\r' || text[i + 1] == u'\n')) ++i;
      body += u"<p>" + line + u"</p>\r\n";
      line.clear();
      open = false;
    } else {
      line += text[i];
    }
  }
  if (open) body += u"<p>" + line + u"</p>\r\n";
  return u"<html>\r\n" + body + u"</html>";
}

String RandomText(std::mt19937& random, const std::vector<StringView>& pieces) {
  String text;
  for (auto count = random() % 60; count > 0; --count) text += pieces[random() % pieces.size()];
  return text;
}

TEST(XCHToHTML, AgreesWithThePlainRules) {
  constexpr unsigned kSeed = 8;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int i = 0; i < 3000; ++i) {
    const String text =
        RandomText(random, {u"<", u"$", u">", u"\r", u"\n", u"α", u"some longer plain text"});
    ASSERT_EQ(XCHToHTML(text), PlainPage(text)) << ToUtf8(text);
  }
}

// Each '<' here would look through the whole text for its '$' and '>'.
TEST(XCHToHTML, OpenLinksCostNoMoreThanTheirText) {
  for (const StringView end : {u"", u"$"}) {
    const String text = String(1'000'000, u'<').append(end);
    EXPECT_EQ(XCHToHTML(text), u"<html>\r\n<p>" + text + u"</p>\r\n</html>");
  }
}

TEST(FixHtmlCode, ReplacesBothWithoutRegardToCase) {
  struct Row {
    StringView html, fixed;
  };
  constexpr Row kRows[] = {
      {u"<script src=\"XCon.js\"></script>", u"<script > var XCon=external;</script>"},
      {u"SRC=\"xcon.JS\">", u"> var XCon=external;"},
      {u"External.Run(EXTERNAL)", u"_external.Run(_external)"},
      {u"_external", u"__external"},
      {u"xexternalx", u"x_externalx"},
      {u"externa", u"externa"},
      {u"src=\"XCon.js\"", u"src=\"XCon.js\""},
      {u"x", u"x"},
      {u"", u""},
  };
  for (const Row& row : kRows) EXPECT_EQ(fixHtmlCode(row.html), row.fixed) << ToUtf8(row.html);
}

String PlainReplace(const String& text, StringView upper, StringView by) {
  const String upper_text = AnsiUpperCase(text);
  String replaced;
  for (std::size_t i = 0; i < text.size();) {
    const bool found = upper_text.compare(i, upper.size(), upper) == 0;
    replaced += found ? by : StringView(text).substr(i, 1);
    i += found ? upper.size() : 1;
  }
  return replaced;
}

TEST(FixHtmlCode, AgreesWithTwoReplacements) {
  constexpr unsigned kSeed = 9;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int i = 0; i < 3000; ++i) {
    const String html =
        RandomText(random, {u"external", u"EXTER", u"nal", u"src=\"XCon.js\">", u"x", u"Src=\"",
                            u"xcon.js", u"\">", u"ſrc=\"XCON.js\">"});
    ASSERT_EQ(fixHtmlCode(html), PlainReplace(PlainReplace(html, u"EXTERNAL", u"_external"),
                                              u"SRC=\"XCON.JS\">", u"> var XCon=external;"))
        << ToUtf8(html);
  }
}

}  // namespace
}  // namespace zentavo
