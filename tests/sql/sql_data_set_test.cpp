#include "adapters/sql/sql_data_set.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "tests/support/error_of.h"
#include "tests/support/temporary_folder.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo {
namespace {

using testing::ErrorOf;

// Every test runs on a new SQLite file and, where there is one, on a PostgreSQL server.
class TSqlDataSetTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    const char* const server = std::getenv("ZENTAVO_TEST_POSTGRES");
    if (OnServer() && server == nullptr) GTEST_SKIP() << "no PostgreSQL server is named";
    url_ = OnServer() ? FromUtf8(server) : u"sqlite:" + (folder_ / u"shop δοκιμή.db");
    connection_.emplace(url_);
    Execute(u"DROP TABLE IF EXISTS item");
    Execute(OnServer() ? u"CREATE TABLE item (id BIGINT PRIMARY KEY, name TEXT, amount "
                         u"NUMERIC(30,4), price DOUBLE PRECISION, happened TIMESTAMP, due DATE, "
                         u"picture BYTEA, active BOOLEAN, parts INTEGER NOT NULL DEFAULT 0)"
                       : u"CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT, amount "
                         u"NUMERIC, price REAL, happened DATETIME, due DATE, picture BLOB, active "
                         u"BOOLEAN, parts INTEGER NOT NULL DEFAULT 0)");
  }

  static bool OnServer() { return GetParam(); }
  void Execute(StringView sql) { connection_->Execute(sql); }

  // Records 1, 2, ... with the given names.
  void Fill(std::initializer_list<const char16_t*> names) {
    std::int64_t id = 0;
    for (const char16_t* const name : names) {
      connection_->Execute(u"INSERT INTO item (id, name) VALUES (:ID, :NAME)",
                           {{u"ID", ++id}, {u"NAME", name}});
    }
  }

  // All names in the order of the keys, as the database has them.
  String Names() {
    TSqlDataSet data(*connection_, u"NAMES");
    data.SetSql(u"SELECT name FROM item ORDER BY id");
    String names;
    for (data.Open(); !data.Eof(); data.Next()) names += data.Fields(0).AsString() + u" ";
    return names;
  }

  testing::TemporaryFolder folder_;
  String url_;
  std::optional<TSqlConnection> connection_;
};

INSTANTIATE_TEST_SUITE_P(Databases, TSqlDataSetTest, ::testing::Values(false, true),
                         [](const auto& database) {
                           return database.param ? "PostgreSQL" : "SQLite";
                         });

class Items : public TSqlDataSet {
 public:
  explicit Items(TSqlConnection& connection) : TSqlDataSet(connection, u"ITEM") {
    SetSql(u"SELECT * FROM item ORDER BY id");
    SetUpdateTable(u"item", u"ID");
    Open();
  }
  void Rename(std::int64_t number, const char16_t* name) {
    SetRecNo(number);
    Edit();
    FieldByName(u"NAME").SetAsString(name);
    Post();
  }
};

TEST_P(TSqlDataSetTest, ValuesSurviveARoundTrip) {
  const struct {
    const char16_t* field;
    TFieldType type;
    Variant value;
  } rows[] = {
      {u"id", TFieldType::ftLargeint, INT64_MAX},
      {u"name", TFieldType::ftString, u"Αθήνα ';-- \U0001F600"},
      {u"amount", TFieldType::ftBCD, u"123456789.1234"},
      {u"price", TFieldType::ftFloat, 0.1},
      {u"happened", TFieldType::ftDateTime, Variant::Date(EncodeDate(2024, 2, 29) + 0.123 / 86400)},
      {u"due", TFieldType::ftDateTime, Variant::Date(EncodeDate(1850, 1, 2))},
      {u"picture", TFieldType::ftBlob,
       Variant::ByteArray{std::byte{0}, std::byte{255}, std::byte{0}}},
      {u"active", TFieldType::ftBoolean, true},
  };
  Items items(*connection_);
  items.Append();
  for (const auto& row : rows) items.FieldByName(row.field).SetValue(row.value);
  items.Post();
  items.Append();
  items.FieldByName(u"ID").SetAsInt64(-1);
  items.Post();
  items.ApplyUpdates();
  items.Close();
  items.Open();
  EXPECT_EQ(items.RecordCount(), 2);
  for (const auto& row : rows) {
    const TField& field = items.FieldByName(row.field);
    EXPECT_EQ(field.DataType(), row.type) << ToUtf8(row.field);
    EXPECT_EQ(field.IsNull(), SameText(row.field, u"ID") ? false : true);
    items.Next();
    if (row.type == TFieldType::ftDateTime) {
      EXPECT_NEAR(field.AsDateTime(), row.value.DoubleValue(), 1e-9);
    } else {
      EXPECT_TRUE(field.Value() == row.value) << ToUtf8(row.field) << ToUtf8(field.AsString());
    }
    items.First();
  }
}

TEST_P(TSqlDataSetTest, ParametersAreBoundNotPasted) {
  Fill({u"a", u"' OR 1=1 --", u"c"});
  TSqlDataSet data(*connection_, u"T");
  data.SetSql(u"SELECT id FROM item WHERE name = :NAME");
  data.SetParameter(u"NAME", u"replaced");
  data.SetParameter(u"NAME", u"' OR 1=1 --");
  data.Open();
  EXPECT_EQ(data.RecordCount(), 1);
  EXPECT_EQ(data.Fields(0).AsInteger(), 2);
}

TEST_P(TSqlDataSetTest, WritesDeletionsEditsAndInsertions) {
  Fill({u"a", u"b", u"c"});
  Items items(*connection_);
  items.Rename(1, u"A");
  items.Rename(1, u"AA");
  items.SetRecNo(2);
  items.Delete();
  items.Append();
  items.FieldByName(u"ID").SetAsInteger(2);  // the key that was freed
  items.FieldByName(u"NAME").SetAsString(u"B");
  items.FieldByName(u"PARTS").SetAsInteger(7);
  items.Post();
  items.Append();
  items.FieldByName(u"ID").SetAsInteger(9);
  items.Post();
  items.Delete();
  EXPECT_EQ(Names(), u"a b c ");
  items.ApplyUpdates();
  EXPECT_FALSE(items.UpdatesPending());
  EXPECT_EQ(Names(), u"AA B c ");
  items.ApplyUpdates();
  items.Rename(1, u"again");
  items.ApplyUpdates();
  EXPECT_EQ(Names(), u"again B c ");
}

TEST_P(TSqlDataSetTest, RefusesRecordsThatOthersChanged) {
  for (const char16_t* const other :
       {u"UPDATE item SET price = 5 WHERE id = 3", u"DELETE FROM item WHERE id = 3"}) {
    Execute(u"DELETE FROM item");
    Fill({u"a", u"b", u"c"});
    Items items(*connection_);
    items.Rename(1, u"A");
    items.Rename(3, u"C");
    TSqlConnection(url_).Execute(other);
    EXPECT_EQ(ErrorOf([&] { items.ApplyUpdates(); }), "Record changed by another user");
    EXPECT_TRUE(Names().starts_with(u"a b ")) << ToUtf8(Names());
    EXPECT_TRUE(items.UpdatesPending());
    items.First();
    EXPECT_EQ(items.FieldByName(u"NAME").AsString(), u"A");
  }
}

TEST_P(TSqlDataSetTest, WritesNothingWhenOneRecordFails) {
  Fill({u"a", u"b"});
  Items items(*connection_);
  items.Rename(1, u"A");
  items.Append();
  items.FieldByName(u"ID").SetAsInteger(2);
  items.Post();
  EXPECT_NE(ErrorOf([&] { items.ApplyUpdates(); }), "nothing raised");
  EXPECT_EQ(Names(), u"a b ");
  items.Edit();
  items.FieldByName(u"ID").SetAsInteger(3);
  items.Post();
  items.ApplyUpdates();
  EXPECT_EQ(Names(), u"A b  ");
}

TEST_P(TSqlDataSetTest, NamesComputedAndRepeatedColumns) {
  Fill({u"a"});
  TSqlDataSet data(*connection_, u"T");
  data.SetSql(u"SELECT id, id AS id_1, id AS id, 1.5 + id AS more, name || 'x' AS text FROM item");
  data.Open();
  EXPECT_EQ(data.FieldCount(), 5);
  EXPECT_EQ(data.FieldByName(u"more").AsFloat(), 2.5);
  EXPECT_EQ(data.FieldByName(u"text").AsString(), u"ax");
}

TEST_P(TSqlDataSetTest, ReportsTheDatabasesErrors) {
  TSqlDataSet data(*connection_, u"T");
  data.SetSql(u"SELECT absent FROM nowhere");
  const std::string error = ErrorOf([&] { data.Open(); });
  EXPECT_NE(error.find("nowhere"), error.npos) << error;
  EXPECT_FALSE(data.Active());
  data.SetSql(u"SELECT 1 AS one");
  data.Open();
  data.Edit();
  data.Fields(0).SetAsInteger(2);
  EXPECT_EQ(ErrorOf([&] { data.ApplyUpdates(); }), "T: There is no table to write to");
}

TEST(TSqlConnection, RefusesOtherUrls) {
  EXPECT_EQ(ErrorOf([] { TSqlConnection connection(u"mysql:x"); }),
            "'mysql:x' is not a database URL");
  EXPECT_NE(ErrorOf([] { TSqlConnection connection(u"sqlite:/nowhere/at/all.db"); }),
            "nothing raised");
}

// What keeps SQLite from writing, and what lets it write again.
TEST(TSqlDataSet, StaysUsableWhenTheFileCannotBeWritten) {
  constexpr struct {
    const char16_t *hinder, *release;
    const char* error;
    bool from_outside;
  } kRows[] = {
      {u"BEGIN IMMEDIATE", u"ROLLBACK", "locked", true},
      {u"PRAGMA query_only = ON", u"PRAGMA query_only = OFF", "readonly", false},
      {u"PRAGMA max_page_count = 1", u"PRAGMA max_page_count = 100000", "full", false},
  };
  for (const auto& row : kRows) {
    const testing::TemporaryFolder folder;
    const String url = u"sqlite:" + (folder / u"a.db");
    TSqlConnection connection(url);
    TSqlConnection other(url);
    connection.Execute(u"PRAGMA busy_timeout = 0");
    connection.Execute(u"CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT)");
    connection.Execute(u"INSERT INTO item VALUES (1, 'a')");
    Items items(connection);
    items.Rename(1, String(100000, u'x').c_str());
    (row.from_outside ? other : connection).Execute(row.hinder);
    EXPECT_NE(ErrorOf([&] { items.ApplyUpdates(); }).find(row.error), std::string::npos);
    EXPECT_TRUE(items.UpdatesPending());
    (row.from_outside ? other : connection).Execute(row.release);
    items.Rename(1, u"b");
    items.ApplyUpdates();
    items.Close();
    items.Open();
    EXPECT_EQ(items.FieldByName(u"NAME").AsString(), u"b");
  }
}

TEST_P(TSqlDataSetTest, OutlivesALostConnection) {
  if (!OnServer()) GTEST_SKIP() << "SQLite has no connection to lose";
  Fill({u"a", u"b"});
  Items items(*connection_);
  items.Rename(1, u"A");
  items.Rename(2, u"B");
  // The trigger ends the connection at the second record of the batch.
  Execute(
      u"CREATE OR REPLACE FUNCTION hang_up() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
      u"PERFORM pg_terminate_backend(pg_backend_pid()); RETURN NEW; END $$");
  Execute(
      u"CREATE TRIGGER hang_up BEFORE UPDATE ON item FOR EACH ROW WHEN (NEW.id = 2) "
      u"EXECUTE FUNCTION hang_up()");
  EXPECT_NE(ErrorOf([&] { items.ApplyUpdates(); }), "nothing raised");
  connection_->Reconnect();
  EXPECT_EQ(Names(), u"a b ");
  Execute(u"DROP TRIGGER hang_up ON item");
  items.ApplyUpdates();
  EXPECT_EQ(Names(), u"A B ");
}

}  // namespace
}  // namespace zentavo
