#include "zentavo/http/url.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"
#include "zentavo/foundation/errors.h"

namespace zentavo {
namespace {

// "scheme|host|port|path|secure", or "none".
String Dump(const std::optional<TUrlParts>& parts) {
  if (!parts) return u"none";
  const std::string port = std::to_string(parts->Port);
  return parts->Scheme + u"|" + parts->Host + u"|" + String(port.begin(), port.end()) + u"|" +
         parts->Path + (parts->IsSecure ? u"|secure" : u"|plain");
}

struct Row {
  StringView url, parts;
};

TEST(Url, SplitsIntoParts) {
  const Row rows[] = {
      {u"http://example.org", u"http|example.org|80|/|plain"},
      {u"HTTPS://Example.org:8443/a/b?x=1&y=2#top", u"https|Example.org|8443|/a/b?x=1&y=2|secure"},
      {u"http://h?x", u"http|h|80|/?x|plain"},
      {u"http://h#f", u"http|h|80|/|plain"},
      {u"http://h:/p", u"http|h|80|/p|plain"},
      {u"ws://h/chat", u"ws|h|80|/chat|plain"},
      {u"wss://h", u"wss|h|443|/|secure"},
      {u"http://user:p@ss@h:81/", u"http|h|81|/|plain"},
      {u"http://[::1]:8080/x", u"http|::1|8080|/x|plain"},
      {u"http://127.0.0.1/", u"http|127.0.0.1|80|/|plain"},
      {u"http://h/a b/\u03B1?q=\"<>\u00E9", u"http|h|80|/a%20b/%CE%B1?q=%22%3C%3E%C3%A9|plain"},
      {u"http://h/%2e%2E/%zz", u"http|h|80|/%2e%2E/%zz|plain"},
      {u"http://h/\xD800", u"http|h|80|/%EF%BF%BD|plain"},
      {u"http://h\\@evil/", u"http|h|80|/%5C@evil/|plain"},
      {u"http://\u03B1\u03B2.gr/", u"http|\u03B1\u03B2.gr|80|/|plain"},
      {u"http://h:65535/", u"http|h|65535|/|plain"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Dump(TrySplitUrl(row.url)), row.parts) << ToUtf8(row.url);
  }
}

TEST(Url, RefusesWhatIsNone) {
  const auto refuses = [](std::initializer_list<StringView> urls) {
    for (const StringView url : urls) EXPECT_EQ(Dump(TrySplitUrl(url)), u"none") << ToUtf8(url);
  };
  refuses({u"", u"h", u"http", u"http:", u"http:/h", u"ftp://h/", u"://h", u" http://h",
           u"javascript:alert(1)"});
  refuses({u"http://",        u"http:///p",      u"http://:80/",     u"http://?x",
           u"http://h h/",    u"http://h:0/",    u"http://h:65536/", u"http://h:99999999999/",
           u"http://h:8a/",   u"http://h:-1/",   u"http://[::1",     u"http://[]/",
           u"http://[::1]x/", u"http://[g::1]/", u"http://::1/",     u"http://h/\r\nX: y",
           u"http://h/a\x7F", u"http://h%2F/",   u"http://a@b\r@h/", u"http://user@/p",
           u"http://h<x>/"});
  EXPECT_FALSE(TrySplitUrl(StringView(u"http://h/\0x", 11)));
}

TEST(Url, ErrorNamesTheAddress) {
  EXPECT_EQ(testing::ErrorOf<EZentavoError>([] { SplitUrl(u"htp://x"); }), "Error in URL: htp://x");
}

TEST(Url, ResolvesReferences) {
  const TUrlParts base = SplitUrl(u"https://h:444/a/b/c?q=1");
  const Row rows[] = {
      {u"http://x/y", u"http|x|80|/y|plain"},
      {u"//x:5/y", u"https|x|5|/y|secure"},
      {u"/y?z", u"https|h|444|/y?z|secure"},
      {u"y", u"https|h|444|/a/b/y|secure"},
      {u"./y", u"https|h|444|/a/b/y|secure"},
      {u"../y", u"https|h|444|/a/y|secure"},
      {u"../../../../y", u"https|h|444|/y|secure"},
      {u"..", u"https|h|444|/a/|secure"},
      {u"?r=../x", u"https|h|444|/a/b/c?r=../x|secure"},
      {u"y?r=/../x", u"https|h|444|/a/b/y?r=/../x|secure"},
      {u"#f", u"https|h|444|/a/b/c?q=1|secure"},
      {u"", u"https|h|444|/a/b/c?q=1|secure"},
      {u"y:z", u"none"},
      {u"mailto:x", u"none"},
      {u"/a\nb", u"none"},
      {u"//", u"none"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Dump(ResolveUrl(base, row.url)), row.parts) << ToUtf8(row.url);
  }
}

}  // namespace
}  // namespace zentavo
