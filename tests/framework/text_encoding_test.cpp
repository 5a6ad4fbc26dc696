#include "zentavo/framework/text_encoding.h"

#include <gtest/gtest.h>

#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

using namespace std::string_view_literals;

TEST(TEncoding, DecodesAndTellsWhatIsInvalid) {
  const struct {
    TEncoding encoding;
    std::string_view bytes;
    StringView text;
    bool valid;
  } rows[] = {
      {TEncoding::Utf8(), "\xEF\xBF\xBD", u"\uFFFD", true},  // a replacement that was written
      {TEncoding::Utf8(), "a\xFFz", u"a\uFFFDz", false},
      {TEncoding::Utf16LE(), "\xB1\x03!\0"sv, u"\u03B1!", true},
      {TEncoding::Utf16LE(), "a\0b"sv, u"a\uFFFD", false},
      {TEncoding(1253), "\xE1", u"\u03B1", true},
      {TEncoding(1253), "\xD2", u"\uFFFD", false},
  };
  for (const auto& row : rows) {
    String text;
    EXPECT_EQ(row.encoding.Decode(row.bytes, text), row.valid);
    EXPECT_EQ(text, row.text);
    if (row.valid) {
      EXPECT_EQ(row.encoding.Encode(text), row.bytes);
    }
  }
}

TEST(TEncoding, RefusesUnknownCodePagesAndHalfMarks) {
  EXPECT_EQ(TEncoding(1200), TEncoding::Utf16LE());
  EXPECT_EQ(TEncoding::FromMark("\xEF\xBB"), std::nullopt);
  EXPECT_THROW(TEncoding(64999), EConvertError);
}

}  // namespace
}  // namespace zentavo
