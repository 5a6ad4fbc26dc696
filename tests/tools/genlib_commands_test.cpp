#include <string>
#include <vector>

#include "tests/tools/tool_run.h"
#include "zentavo/framework/text.h"
#ifdef ZENTAVO_SQL
#include "adapters/sql/connection.h"
#include "zentavo/platform/files.h"
#endif

namespace zentavo::testing {
namespace {

TEST(AmountCommand, RoundsComparesAndAllocates) {
  ExpectRuns({"amount"}, "amount allocate",
             {{{"round", "-2.5", "0"}, "-3\n"},
              {{"round", "2.001", "2", "up"}, "2.01\n"},
              {{"step", "12.34", "0.05"}, "12.35\n"},
              {{"step", "1", "0"}, "'0' is not a step to round to", 1},
              {{"equal", "1", "1.000000002"}, "no\n"},
              {{"allocate", "100", "1", "1", "1"}, "33.33\n33.34\n33.33\n"},
              {{"allocate", "-5", "1", "0", "--into", "1,2", "--decimals", "0"}, "-4\n2\n"},
              {{"allocate", "5", "1", "--into", "1,2"}, "--into has 2 amounts for 1 weights", 2}});
}

TEST(SqlCommand, ComposesText) {
  ExpectRuns({"sql"}, "sql inject",
             {{{"in", "ID", "-1", "2"}, "(ID IN (-1,2))\n"},
              {{"in-text", "ID", "1, 2"}, "(ID IN (1, 2))\n"},
              {{"in-values", "ID", "3,1,3"}, "((ID IN (3, 1)))\n"},
              {{"add-fields", "Y;Z", "A", "SELECT A.Y FROM T A"}, "SELECT A.Z,A.Y FROM T A\n"},
              {{"keys", "F1;F2", "a.b,c.d"}, "(F1=a AND F2=b) OR (F1=c AND F2=d)\n"},
              {{"inject", "S", "--name", "N", "--query", "Q"}, "#,N#Q#S\n"},
              {{"inject", "S", "--name", "N"}, "there must be as many --query as --name", 2},
              {{"check", "---SELECT A FROM T", "#,N#Q#S"}, "SELECT A,N FROM T Q\n"}});
}

TEST(TextCommand, WrapsTrimsAndMasks) {
  const std::string masked = RunTool({"text", "mask", "Ένα"}).output;
  ExpectRuns({"text"}, "text unique",
             {{{"wrap", "the quick brown fox", "10"}, "the quick\nbrown\nfox\n"},
              {{"trim-literal", "12/03/  ", "99/99/99"}, "12/03\n"},
              {{"unique", "a;b;a", ";"}, "a;b\n"},
              {{"unique", "a", "ab"}, "'ab' is not one character", 2},
              {{"unmask", masked.substr(0, masked.size() - 1)}, "Ένα\n"},
              {{"unmask", "#@"}, "Mask position 0 is not in 1..32", 1},
              {{"hash", "ab"}, "3723\n"}});
  ExpectRuns({"access", "5", "3"}, "access",
             {{{"U5,B"}, "yes\n"}, {{"", "--default", "no"}, "no\n"}});
}

#ifdef ZENTAVO_SQL
TEST(DataCommand, PacksAllocatesAndFilters) {
  const TemporaryFolder folder;
  const std::string url = "sqlite:" + ToUtf8(folder / u"a.db");
  TSqlConnection connection(FromUtf8(url));
  connection.Execute(
      u"CREATE TABLE DOC (ID INTEGER PRIMARY KEY, W REAL, COST NUMERIC, DOCACCESS TEXT, ISACTIVE "
      u"INTEGER)");
  connection.Execute(
      u"INSERT INTO DOC VALUES (1, 1, NULL, 'A', 1), (2, 1, 0.5, 'B', 1), "
      u"(3, 1, 0, 'U5,|~', 2)");
  const std::vector<std::string> allocate = {"allocate",
                                             "--db",
                                             url,
                                             "--amount",
                                             "100",
                                             "--key",
                                             "ID",
                                             "--weight",
                                             "w",
                                             "--into",
                                             "COST",
                                             "--source",
                                             "SELECT W FROM DOC ORDER BY ID",
                                             "--target",
                                             "SELECT ID, COST FROM DOC ORDER BY ID"};
  const std::vector<std::string> access = {"access", "--db",   url, "--table", "DOC", "--key",
                                           "ID",     "--user", "5", "--group", "3"};
  std::vector<std::string> mark = access;
  mark.emplace_back("--mark");
  const std::string visible =
      "ID,W,COST,DOCACCESS,ISACTIVE\n1,1,33.33,A,1\n3,1,33.33,\"U5,|~\",2\n";
  ExpectRuns({"data"}, "data",
             {{allocate, ""},
              {{"pack", "--db", url, "SELECT ID, COST, DOCACCESS FROM DOC ORDER BY ID"},
               "1|33.33|A|~2|33.84|B|~3|33.33|U5,\\|\\~|~\n"},
              {access, visible},
              {mark, visible},
              {{"pack", "--db", url, "SELECT ISACTIVE FROM DOC ORDER BY ID"}, "1|~0|~2|~\n"},
              {{"unpack", "1|a\\|\\~b,|~2||~3"}, "1,\"a|~b,\"\n2,\n3\n"}});
}

TEST(DataCommand, MakesNoDatabase) {
  const TemporaryFolder folder;
  const std::string file = ToUtf8(folder / u"absent.db");
  const ProgramRun run = RunTool({"data", "pack", "--db", "sqlite:" + file, "SELECT 1"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_TRUE(run.error.starts_with("zentavo: Cannot open file")) << run.error;
  EXPECT_FALSE(platform::FileExists(folder / u"absent.db"));
}
#endif

}  // namespace
}  // namespace zentavo::testing
