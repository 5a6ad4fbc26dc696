// The records of a query, buffered, and written back by key.
//
//   TSqlConnection connection(u"sqlite:shop.db");
//   TSqlDataSet items(connection, u"MTRL");
//   items.SetSql(u"SELECT ID, CODE, PRICE FROM MTRL WHERE PRICE > :LOW");
//   items.SetParameter(u"LOW", 10.0);
//   items.SetUpdateTable(u"MTRL", u"ID");
//   items.Open();
//   items.Edit();
//   items.FieldByName(u"PRICE").SetAsFloat(12.5);
//   items.Post();
//   items.ApplyUpdates();
//
// Opening reads all records, in the order of the query. Posting and deleting change the buffer;
// ApplyUpdates changes the database. Fields have the types of their columns: whole numbers integer
// or 64-bit integer, NUMERIC and DECIMAL as BCD, DATE, DATETIME and TIMESTAMP (without a time zone)
// as date-time in milliseconds, bytes as blob, everything else as string. In SQLite declared types
// decide; a column without one, such as a computed one, has the type of its first value.
//
// Beyond what data sets raise, operations raise EDatabaseError with the database's own text, and
// "Field '%s' holds a value of another type" for a value that its column's type does not fit.
#pragma once

#include <map>
#include <set>
#include <vector>

#include "adapters/sql/connection.h"
#include "zentavo/framework/memory_data_set.h"

namespace zentavo {

class SqlUpdater;
struct SqlColumn;

class TSqlDataSet : public TMemoryDataSet {
 public:
  // The connection must outlive the data set.
  TSqlDataSet(TSqlConnection& connection, String name);
  ~TSqlDataSet() override;

  // Take effect when the data set is opened next. Names of parameters heed case; the statement must
  // have each of them.
  void SetSql(StringView sql) { sql_ = sql; }
  void SetParameter(StringView name, const Variant& value);

  // Where records are written back: a table, as it stands in SQL text, and the ';'-separated fields
  // that tell its records apart. All fields of the query must be columns of that table.
  void SetUpdateTable(StringView table, StringView key_fields);

  bool UpdatesPending() const;
  // Posts, then writes all deletions, edits and insertions since the last time in one transaction.
  // Where a record was changed or removed by somebody else since it was read, raises EDatabaseError
  // "Record changed by another user". On any error nothing is written and everything stays pending.
  void ApplyUpdates();

 protected:
  void OpenStore() override;
  void CloseStore() override;
  void StoreInserted(std::int64_t position, RowSlot row) override;
  void StoreEdited(RowSlot row, RowSlot edited) override;
  void StoreDeleted(std::int64_t position) override;

 private:
  friend class SqlUpdater;
  using Record = std::vector<Variant>;  // by field

  void AddColumns(const std::vector<SqlColumn>& columns);
  void ReadRow(SqlCursor& cursor);
  Record Values(RowSlot row);
  void ForgetUpdates();

  TSqlConnection& connection_;
  String sql_;
  SqlParameters parameters_;
  String table_;
  String key_fields_;
  std::vector<SqlColumn> sql_columns_;
  // What is to be written: rows that were inserted, what edited rows held before, and what deleted
  // ones held.
  std::set<RowSlot> inserted_;
  std::map<RowSlot, Record> edited_;
  std::vector<Record> deleted_;
};

}  // namespace zentavo
