#include <gtest/gtest.h>

#include <random>

#include "zentavo/framework/text.h"

namespace zentavo {
namespace {

// One sequence at a time, by the table of well-formed byte sequences; an ill-formed one is as long
// as its longest correct beginning.
String PlainDecode(std::string_view bytes) {
  String text;
  for (std::size_t i = 0; i < bytes.size();) {
    const auto at = [&](std::size_t index) {
      return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
    };
    const unsigned lead = at(i);
    const std::size_t trails = lead < 0x80                    ? 0
                               : lead >= 0xC2 && lead <= 0xDF ? 1
                               : lead >= 0xE0 && lead <= 0xEF ? 2
                               : lead >= 0xF0 && lead <= 0xF4 ? 3
                                                              : 4;
    char32_t code = trails == 0 ? lead : lead & (0x3FU >> trails);
    std::size_t read = 0;
    for (; read < trails && trails < 4; ++read) {
      const unsigned byte = at(i + 1 + read);
      unsigned low = 0x80, high = 0xBF;
      if (read == 0 && lead == 0xE0) low = 0xA0;
      if (read == 0 && lead == 0xED) high = 0x9F;
      if (read == 0 && lead == 0xF0) low = 0x90;
      if (read == 0 && lead == 0xF4) high = 0x8F;
      if (byte < low || byte > high) break;
      code = code << 6 | (byte & 0x3F);
    }
    i += 1 + read;
    if (read < trails) code = 0xFFFD;
    if (code >= 0x10000) {
      text += static_cast<char16_t>(0xD7C0 + (code >> 10));
      code = 0xDC00 + (code & 0x3FF);
    }
    text += static_cast<char16_t>(code);
  }
  return text;
}

template <typename Text, typename Piece>
Text RandomText(std::mt19937& random, std::initializer_list<Piece> pieces) {
  Text text;
  for (auto count = random() % 20; count > 0; --count) {
    const Piece piece = pieces.begin()[random() % pieces.size()];
    const unsigned most = random() % 16 == 0 ? 500 : 12;  // now and then a long run
    for (auto times = random() % most; times > 0; --times) text += piece;
  }
  return text;
}

TEST(Utf8, ReadsAsThePlainRulesSay) {
  constexpr unsigned kSeed = 3;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int i = 0; i < 20'000; ++i) {
    const AnsiString bytes = RandomText<AnsiString, std::string_view>(
        random,
        {"a", "word ", "Ω", "Αθήνα", "日", "\U0001F600", "\x80", "\xBF\xBF", "\xC1\xBF", "\xC2",
         "\xE0\x9F\x80", "\xE2\x82", "\xED\xA0\x80", "\xF0\x9F", "\xF4\x90\x80\x80", "\xFF"});
    const String plain = PlainDecode(bytes);
    ASSERT_EQ(FromUtf8(bytes), plain) << ::testing::PrintToString(bytes);
    ASSERT_EQ(IsValidUtf8(bytes), ToUtf8(plain) == bytes) << ::testing::PrintToString(bytes);
  }
}

TEST(Utf8, WrittenTextsReadBackAsTheyWere) {
  constexpr unsigned kSeed = 4;
  SCOPED_TRACE(kSeed);
  std::mt19937 random(kSeed);
  for (int i = 0; i < 20'000; ++i) {
    const String text = RandomText<String, StringView>(
        random, {u"a", u"word ", u"\x7F", u"\x80", u"Ω", u"Αθήνα", u"\x7FF", u"\x800", u"日",
                 u"\U0001F600", u"\xFFFF", u"\xD800", u"\xDFFF"});
    const AnsiString bytes = ToUtf8(text);
    ASSERT_TRUE(IsValidUtf8(bytes));
    const String read = FromUtf8(bytes);
    ASSERT_EQ(read == text, !HasLoneSurrogate(text)) << ::testing::PrintToString(text);
    ASSERT_EQ(ToUtf8(read), bytes);
  }
}

TEST(Utf8, AppendsBehindWhatIsThere) {
  AnsiString bytes = "a";
  AppendUtf8(bytes, u"Ω\xDC00");
  EXPECT_EQ(bytes, "aΩ\xEF\xBF\xBD");
  String text = u"a";
  AppendFromUtf8(text, "Ω\x80\x80\x80");
  EXPECT_EQ(text, u"aΩ\uFFFD\uFFFD\uFFFD");
}

}  // namespace
}  // namespace zentavo
