#include "zentavo/genlib/masking.h"

#include <gtest/gtest.h>

#include "tests/support/error_of.h"
#include "zentavo/foundation/errors.h"

namespace zentavo {
namespace {

TEST(EncodeStr, ComesBackFromEveryStart) {
  AnsiString text;
  for (int length = 0; length < 70; ++length) {
    for (int start = 1; start <= kMaskPositions; ++start) {
      EXPECT_EQ(DecodeStr(EncodeStr(text, start)), text) << "start " << start;
    }
    text += static_cast<char>(length * 37);
  }
}

TEST(EncodeStr, WritesUnitsOfSixBitsFromAnywhere) {
  // 'a' ^ 'Q' is 0x30: 48 and 0.
  EXPECT_EQ(EncodeStr("a", 1), "#Ap@");
  EXPECT_EQ(EncodeStr("abc", 32).size(), 6U);
  EXPECT_EQ(EncodeStr("", 5), "");
  const AnsiString masked = EncodeStr("Ένα κείμενο");
  EXPECT_EQ(DecodeStr(masked), "Ένα κείμενο");
  for (const char character : masked) EXPECT_GE(character, 0x23);
  bool differs = false;
  const AnsiString first = EncodeStr("abc");
  for (int run = 0; run < 200; ++run) differs |= EncodeStr("abc") != first;
  EXPECT_TRUE(differs);
}

TEST(DecodeStr, LeavesOtherTextsAloneAndRefusesStartsOutsideTheMask) {
  EXPECT_EQ(DecodeStr("abc"), "abc");
  EXPECT_EQ(DecodeStr(""), "");
  EXPECT_EQ(DecodeStr("#Ap"), "");
  for (const char* text : {"#", "#@", "#a", "#\xFF"}) {
    EXPECT_THROW(DecodeStr(text), EZentavoError) << text;
  }
  EXPECT_EQ(testing::ErrorOf<EZentavoError>([] { DecodeStr("#aAA"); }),
            "Mask position 33 is not in 1..32");
}

TEST(HashForString, SumsUnitsFromTheLast) {
  EXPECT_EQ(HashForString(u""), 0);
  EXPECT_EQ(HashForString(u"a"), 97);
  EXPECT_EQ(HashForString(u"ab"), 98 * 37 + 97);
  EXPECT_EQ(HashForString(u"zzzzzzz"), -408963586);
}

}  // namespace
}  // namespace zentavo
