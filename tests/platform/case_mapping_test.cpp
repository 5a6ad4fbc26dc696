#include "zentavo/platform/case_mapping.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zentavo::platform {
namespace {

TEST(CaseMapping, MapsUnitByUnit) {
  constexpr struct {
    std::u16string_view text, upper, lower;
  } kRows[] = {
      {u"aZ9_", u"AZ9_", u"az9_"},
      {u"Άέώς σΣ", u"ΆΈΏΣ ΣΣ", u"άέώς σσ"},
      {u"ÿßñ", u"ŸßÑ", u"ÿßñ"},
      {u"\u00B5\u017F\u0131\u03D0", u"ΜSIΒ",
       u"\u00B5\u017F\u0131\u03D0"},  // these lead nowhere back
      {u"\u0130\u2126\u212A", u"\u0130\u2126\u212A", u"iωk"},
      {u"\xD801\xDC28 \xD800", u"\xD801\xDC28 \xD800", u"\xD801\xDC28 \xD800"},
      {u"\xDC00z\xD801\xDC00", u"\xDC00Z\xD801\xDC00", u"\xDC00z\xD801\xDC00"},
  };
  for (const auto& row : kRows) {
    std::u16string upper(row.text);
    UpperCaseUnits(upper);
    EXPECT_EQ(upper, row.upper);
    std::u16string lower(row.text);
    LowerCaseUnits(lower);
    EXPECT_EQ(lower, row.lower);
  }
}

}  // namespace
}  // namespace zentavo::platform
