#include "zentavo/genlib/composite_keys.h"

#include <gtest/gtest.h>

namespace zentavo {
namespace {

TEST(ComplexMultiSQL, BuildsConditionsOverCompositeKeys) {
  struct Row {
    const char16_t *fields, *values, *extra1, *expected;
  };
  for (const Row& row :
       {Row{u"F1;F2", u"a.b,c.d", u"", u"(F1=a AND F2=b) OR (F1=c AND F2=d)"},
        Row{u"F1;F2", u"(a.b, c.d)", u"", u"(F1=a AND F2=b) OR (F1=c AND F2=d)"},
        Row{u"F1", u"1.2", u"F2", u"(F1=1 AND F2=2)"}, Row{u"F1", u"1,2", u"", u"(F1=1) OR (F1=2)"},
        Row{u"F1;F2", u"1,2,3", u"", u"(F2 IN (1,2,3))"},
        Row{u"F1;F2;F3", u"a.b,a.c", u"", u"(F1=a AND F3 IN (b,c))"},
        Row{u"F1;F2;F3", u"a.b,a.c,d.e,a.f", u"",
            u"(F1=a AND F3 IN (b,c)) OR (F1=d AND F3 IN (e)) OR (F1=a AND F3 IN (f))"},
        Row{u"F1;F2", u"1,a.b,2", u"", u"(F2 IN (1)) OR (F1=a AND F2=b) OR (F2 IN (2))"},
        Row{u"F1;F2", u"a.b.c,a.b.d", u"", u"(F1=a AND F2=b AND F2 IN (c,d))"},
        Row{u"", u"a.b", u"F1", u""}, Row{u"F1", u"", u"", u""}, Row{u"F1", u"(", u"", u""}}) {
    EXPECT_EQ(ComplexMultiSQL(row.fields, row.values, row.extra1), row.expected)
        << ToUtf8(row.values);
  }
  EXPECT_EQ(ComplexMultiSQL(u"A", u"1.2.3", u"B", u"C"), u"(A=1 AND B=2 AND C=3)");
}

}  // namespace
}  // namespace zentavo
