#include "adapters/sql/sql_data_set.h"

#include <algorithm>

#include "adapters/sql/statement.h"
#include "adapters/sql/updater.h"
#include "zentavo/framework/field_column.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

TSqlDataSet::TSqlDataSet(TSqlConnection& connection, String name)
    : TMemoryDataSet(std::move(name)), connection_(connection) {}

TSqlDataSet::~TSqlDataSet() = default;

void TSqlDataSet::SetParameter(StringView name, const Variant& value) {
  const auto place = std::find_if(parameters_.begin(), parameters_.end(),
                                  [&](const auto& known) { return SameText(known.first, name); });
  if (place != parameters_.end()) {
    place->second = value;
  } else {
    parameters_.emplace_back(name, value);
  }
}

void TSqlDataSet::SetUpdateTable(StringView table, StringView key_fields) {
  table_ = table;
  key_fields_ = key_fields;
}

void TSqlDataSet::OpenStore() {
  CloseStore();
  SqlStatement statement(connection_.Session(), sql_, parameters_);
  const auto cursor = statement.Query();
  try {
    WithDatabaseErrors([&] {
      AddColumns(cursor->Columns());
      for (; cursor->AtRow(); cursor->Next()) ReadRow(*cursor);
    });
  } catch (...) {
    CloseStore();
    throw;
  }
}

void TSqlDataSet::CloseStore() {
  ClearDefinition();
  sql_columns_.clear();
  ForgetUpdates();
}

void TSqlDataSet::AddColumns(const std::vector<SqlColumn>& columns) {
  for (const SqlColumn& column : columns) {
    String name = column.name;
    for (int copy = 1; FindField(name) != nullptr; ++copy)
      name = column.name + u"_" + IntToStr(copy);
    AddField(name, column.type);
  }
  sql_columns_ = columns;
}

void TSqlDataSet::ReadRow(SqlCursor& cursor) {
  const RowSlot row = NewRow(kNoSlot);
  for (std::size_t i = 0; i < sql_columns_.size(); ++i) {
    cursor.Read(i, sql_columns_[i].type, Column(i), row);
  }
  TMemoryDataSet::StoreInserted(StoredCount(), row);
}

TSqlDataSet::Record TSqlDataSet::Values(RowSlot row) {
  Record values;
  for (std::size_t i = 0; i < sql_columns_.size(); ++i) {
    values.push_back(Column(i).IsNull(row) ? Variant::Null() : Column(i).Get(row));
  }
  return values;
}

void TSqlDataSet::StoreInserted(std::int64_t position, RowSlot row) {
  inserted_.insert(row);
  TMemoryDataSet::StoreInserted(position, row);
}

void TSqlDataSet::StoreEdited(RowSlot row, RowSlot edited) {
  if (!inserted_.contains(row) && !edited_.contains(row)) edited_.emplace(row, Values(row));
  TMemoryDataSet::StoreEdited(row, edited);
}

void TSqlDataSet::StoreDeleted(std::int64_t position) {
  const RowSlot row = StoredRow(position);
  if (inserted_.erase(row) == 0) {
    const auto before = edited_.find(row);
    deleted_.push_back(before == edited_.end() ? Values(row) : before->second);
    edited_.erase(row);
  }
  TMemoryDataSet::StoreDeleted(position);
}

bool TSqlDataSet::UpdatesPending() const {
  return !inserted_.empty() || !edited_.empty() || !deleted_.empty();
}

void TSqlDataSet::ForgetUpdates() {
  inserted_.clear();
  edited_.clear();
  deleted_.clear();
}

void TSqlDataSet::ApplyUpdates() {
  CheckBrowseMode();
  if (!UpdatesPending()) return;
  TSqlTransaction transaction(connection_);
  SqlUpdater(*this).WriteAll();
  transaction.Commit();
  ForgetUpdates();
}

}  // namespace zentavo
