#include "zentavo/genlib/sub_queries.h"

#include <gtest/gtest.h>

namespace zentavo {
namespace {

const String kNames[] = {u"T.X", u"T.Y"};
const String kQueries[] = {u"JOIN A", u"JOIN B"};

TEST(InjectSubQueries, PacksNamesQueriesAndStatement) {
  EXPECT_EQ(InjectSubQueries(u"S", kNames, kQueries), u"#,T.X,T.Y#JOIN A\r\nJOIN B#S");
  EXPECT_EQ(InjectSubQueries(u"S", {}, kQueries), u"#,##S");
  EXPECT_EQ(InjectSubQueries(u"S", kNames, {}), u"#,T.X,T.Y#\r\n#S");
}

TEST(CheckSubQueries, CompletesTheStatementOfATextWithMarkers) {
  struct {
    String statement, packed;
    const char16_t *completed, *rest;
  } rows[] = {
      {u"---SELECT A FROM T", u"#,N#Q#S", u"SELECT A,N FROM T Q", u"S"},
      {u"---S (1 FROM 2) from T FROM U", u"#,N#Q#", u"S (1 FROM 2),N from T FROM U Q", u""},
      {u"---S (1 FROM 2)", u"#,N#Q#a#b", u"S (1 FROM 2) Q", u"a#b"},
      {u"xy", u"#,N#Q", u" Q", u""},
      {u"", u"#", u" ", u""},
  };
  for (auto& row : rows) {
    EXPECT_TRUE(CheckSubQueries(row.statement, row.packed));
    EXPECT_EQ(row.statement, row.completed);
    EXPECT_EQ(row.packed, row.rest);
  }
  String statement = u"SELECT 1 FROM T";
  String packed = u"x#y";
  EXPECT_FALSE(CheckSubQueries(statement, packed));
  EXPECT_EQ(statement, u"SELECT 1 FROM T");
  EXPECT_EQ(packed, u"x#y");
}

}  // namespace
}  // namespace zentavo
