// Writes a data set's pending updates.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "adapters/sql/sql_data_set.h"
#include "adapters/sql/statement.h"

namespace zentavo {

class SqlUpdater {
 public:
  // Raises EDatabaseError when the data set has no update table, or no such key field.
  explicit SqlUpdater(TSqlDataSet& data_set);

  void WriteAll();

 private:
  using Record = TSqlDataSet::Record;
  using FieldList = std::vector<std::size_t>;  // positions of fields

  // Raises "Record changed by another user" unless the database holds the record as it is here.
  void CheckUnchanged(const Record& before);
  void Delete(const Record& before);
  void Update(const Record& before, const Record& now);
  void Insert(const Record& now);

  // Executes `sql` with the values of `fields` as :v0, :v1, ... and the keys' as :k0, :k1, ...
  SqlStatement& Prepared(const String& sql, const FieldList& fields, const Record& values,
                         const Record& keys);
  String KeyCondition() const;
  String ColumnName(std::size_t field) const;
  Variant ToDatabase(std::size_t field, const Variant& value) const;

  TSqlDataSet& data_;
  FieldList all_;
  FieldList keys_;
  // By the text and the kinds of the values, since a bound value keeps its kind.
  std::map<String, std::unique_ptr<SqlStatement>> statements_;
};

}  // namespace zentavo
