#include <gtest/gtest.h>

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

struct Row {
  std::vector<std::string> arguments;
  int exit_code;
  std::string printed;  // on standard output, or on standard error when the exit code is not 0
};

void ExpectRuns(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    const ProgramRun run = RunTool(row.arguments);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.arguments[1] << run.error;
    EXPECT_EQ(row.exit_code == 0 ? run.output : run.error, row.printed);
  }
}

TEST(AmountCommand, RoundsComparesAndAllocates) {
  ExpectRuns({
      {{"amount", "round", "-2.5", "0"}, 0, "-3\n"},
      {{"amount", "round", "2.001", "2", "up"}, 0, "2.01\n"},
      {{"amount", "round", "1250", "-2"}, 0, "1300\n"},
      {{"amount", "step", "12.34", "0.05"}, 0, "12.35\n"},
      {{"amount", "step", "1", "0"}, 1, "zentavo: '0' is not a step to round to\n"},
      {{"amount", "equal", "1", "1.000000002"}, 0, "no\n"},
      {{"amount", "allocate", "100", "1", "1", "1"}, 0, "33.33\n33.34\n33.33\n"},
      {{"amount", "allocate", "-5", "1", "0", "--into", "1,2", "--decimals", "0"}, 0, "-4\n2\n"},
      {{"amount", "allocate", "5", "1", "--into", "1,2"},
       2,
       "zentavo: --into has 2 amounts for 1 weights (try 'zentavo amount allocate --help')\n"},
      {{"amount", "round", "x", "2"},
       2,
       "zentavo: 'x' is not a number (try 'zentavo amount round --help')\n"},
  });
}

TEST(SqlCommand, ComposesText) {
  ExpectRuns({
      {{"sql", "in", "ID", "-1", "2"}, 0, "(ID IN (-1,2))\n"},
      {{"sql", "in", "ID"}, 0, "(ID IN ()\n"},
      {{"sql", "in-text", "ID", "1, 2"}, 0, "(ID IN (1, 2))\n"},
      {{"sql", "in-values", "ID", "3,1,3"}, 0, "((ID IN (3, 1)))\n"},
      {{"sql", "add-fields", "Y;Z", "A", "SELECT A.Y FROM T A"}, 0, "SELECT A.Z,A.Y FROM T A\n"},
      {{"sql", "keys", "F1;F2", "a.b,c.d"}, 0, "(F1=a AND F2=b) OR (F1=c AND F2=d)\n"},
      {{"sql", "inject", "S", "--name", "N", "--query", "Q"}, 0, "#,N#Q#S\n"},
      {{"sql", "inject", "S", "--name", "N"},
       2,
       "zentavo: there must be as many --query as --name (try 'zentavo sql inject --help')\n"},
      {{"sql", "check", "---SELECT A FROM T", "#,N#Q#S"}, 0, "SELECT A,N FROM T Q\n"},
      {{"sql", "check", "SELECT A", "plain"}, 0, "SELECT A\n"},
  });
}

TEST(TextCommand, WrapsTrimsAndMasks) {
  const std::string masked = RunTool({"text", "mask", "Ένα"}).output;
  ExpectRuns({
      {{"text", "wrap", "the quick brown fox", "10"}, 0, "the quick\nbrown\nfox\n"},
      {{"text", "trim-literal", "12/03/  ", "99/99/99"}, 0, "12/03\n"},
      {{"text", "unique", "a;b;a", ";"}, 0, "a;b\n"},
      {{"text", "unique", "a", "ab"},
       2,
       "zentavo: 'ab' is not one character (try 'zentavo text unique --help')\n"},
      {{"text", "unmask", masked.substr(0, masked.size() - 1)}, 0, "Ένα\n"},
      {{"text", "unmask", "#@"}, 1, "zentavo: Mask position 0 is not in 1..32\n"},
      {{"text", "hash", "ab"}, 0, "3723\n"},
      {{"access", "5", "3", "U5,B"}, 0, "yes\n"},
      {{"access", "5", "3", "", "--default", "no"}, 0, "no\n"},
  });
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
  const std::vector<std::string> allocate = {
      "data",     "allocate", "--db",     url,
      "--amount", "100",      "--source", "SELECT W FROM DOC ORDER BY ID",
      "--weight", "w",        "--target", "SELECT ID, COST FROM DOC ORDER BY ID",
      "--into",   "COST",     "--key",    "ID"};
  const std::vector<std::string> access = {"data",  "access", "--db",   url, "--table", "DOC",
                                           "--key", "ID",     "--user", "5", "--group", "3"};
  std::vector<std::string> mark = access;
  mark.emplace_back("--mark");
  const std::string visible =
      "ID,W,COST,DOCACCESS,ISACTIVE\n1,1,33.33,A,1\n3,1,33.33,\"U5,|~\",2\n";
  ExpectRuns({
      {allocate, 0, ""},
      {{"data", "pack", "--db", url, "SELECT ID, COST, DOCACCESS FROM DOC ORDER BY ID"},
       0,
       "1|33.33|A|~2|33.84|B|~3|33.33|U5,\\|\\~|~\n"},
      {access, 0, visible},
      {mark, 0, visible},
      {{"data", "pack", "--db", url, "SELECT ISACTIVE FROM DOC ORDER BY ID"}, 0, "1|~0|~2|~\n"},
      {{"data", "unpack", "1|a\\|\\~b,|~2||~3"}, 0, "1,\"a|~b,\"\n2,\n3\n"},
  });
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
