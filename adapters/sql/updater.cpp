#include "adapters/sql/updater.h"

#include "zentavo/foundation/helper_text.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_operators.h"

namespace zentavo {

namespace {

String Numbered(char16_t letter, std::size_t number) {
  return letter + IntToStr(static_cast<std::int64_t>(number));
}

String QuotedName(StringView name) {
  return QuotedStr(name, u'"');
}

bool SameValue(const Variant& a, const Variant& b) {
  if (a.IsNull() || b.IsNull()) return a.IsNull() && b.IsNull();
  return a == b;
}

}  // namespace

SqlUpdater::SqlUpdater(TSqlDataSet& data_set) : data_(data_set) {
  if (data_.table_.empty() || data_.key_fields_.empty()) {
    data_.Raise(u"There is no table to write to");
  }
  for (std::size_t i = 0; i < data_.sql_columns_.size(); ++i) all_.push_back(i);
  for (const String& name : SplitStr(data_.key_fields_, u';')) {
    const TField& key = data_.FieldByName(TrimView(name));
    for (const std::size_t i : all_) {
      if (&data_.Fields(static_cast<std::int32_t>(i)) == &key) keys_.push_back(i);
    }
  }
}

String SqlUpdater::ColumnName(std::size_t field) const {
  return QuotedName(data_.sql_columns_[field].name);
}

// Dates go to the database as its own text, in the form of their column.
Variant SqlUpdater::ToDatabase(std::size_t field, const Variant& value) const {
  if (value.Kind() != VariantKind::kDate) return value;
  const TFormatSettings plain;
  if (data_.sql_columns_[field].date_only) return DateToStr(value.DoubleValue(), plain);
  return FormatDateTime(u"yyyy-mm-dd hh:nn:ss.zzz", value.DoubleValue(), plain);
}

SqlStatement& SqlUpdater::Prepared(const String& sql, const FieldList& fields, const Record& values,
                                   const Record& keys) {
  SqlParameters parameters;
  std::vector<Variant> bound;
  String name = sql;
  const auto add = [&](char16_t letter, std::size_t number, std::size_t field,
                       const Variant& value) {
    parameters.emplace_back(Numbered(letter, number), ToDatabase(field, value));
    bound.push_back(parameters.back().second);
    name += static_cast<char16_t>(u'0' + static_cast<int>(bound.back().Kind()));
  };
  for (std::size_t i = 0; i < fields.size(); ++i) add(u'v', i, fields[i], values[fields[i]]);
  if (!keys.empty()) {
    for (std::size_t i = 0; i < keys_.size(); ++i) add(u'k', i, keys_[i], keys[keys_[i]]);
  }
  std::unique_ptr<SqlStatement>& statement = statements_[name];
  if (statement == nullptr) {
    statement = std::make_unique<SqlStatement>(data_.connection_.Session(), sql, parameters);
  } else {
    statement->Bind(bound);
  }
  return *statement;
}

String SqlUpdater::KeyCondition() const {
  String condition;
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    condition +=
        String(i == 0 ? u" WHERE " : u" AND ") + ColumnName(keys_[i]) + u" = :" + Numbered(u'k', i);
  }
  return condition;
}

void SqlUpdater::CheckUnchanged(const Record& before) {
  String sql = u"SELECT ";
  for (const std::size_t i : all_) sql += String(i == 0 ? u"" : u", ") + ColumnName(i);
  sql += u" FROM " + data_.table_ + KeyCondition();
  if (data_.connection_.Session().dialect == SqlDialect::kPostgres) sql += u" FOR UPDATE";
  const auto cursor = Prepared(sql, {}, before, before).Query();
  bool same = cursor->AtRow();
  for (std::size_t i = 0; same && i < all_.size(); ++i) {
    const auto column = MakeColumn(data_.sql_columns_[i].type);
    column->Resize(1);
    const bool given = cursor->Read(i, data_.sql_columns_[i].type, *column, 0);
    same = SameValue(before[i], given ? column->Get(0) : Variant::Null());
  }
  if (!same) throw EDatabaseError(u"Record changed by another user");
  cursor->Next();
  if (cursor->AtRow()) data_.Raise(u"Several records have the same key");
}

void SqlUpdater::Delete(const Record& before) {
  CheckUnchanged(before);
  Prepared(u"DELETE FROM " + data_.table_ + KeyCondition(), {}, before, before).Execute();
}

void SqlUpdater::Update(const Record& before, const Record& now) {
  CheckUnchanged(before);
  String sql = u"UPDATE " + data_.table_ + u" SET ";
  FieldList changed;
  for (const std::size_t i : all_) {
    if (SameValue(before[i], now[i])) continue;
    sql += String(changed.empty() ? u"" : u", ") + ColumnName(i) + u" = :" +
           Numbered(u'v', changed.size());
    changed.push_back(i);
  }
  if (!changed.empty()) Prepared(sql + KeyCondition(), changed, now, before).Execute();
}

void SqlUpdater::Insert(const Record& now) {
  String names;
  String values;
  FieldList given;
  for (const std::size_t i : all_) {
    if (now[i].IsNull()) continue;
    names += String(given.empty() ? u"" : u", ") + ColumnName(i);
    values += String(given.empty() ? u":" : u", :") + Numbered(u'v', given.size());
    given.push_back(i);
  }
  const String sql =
      u"INSERT INTO " + data_.table_ +
      (given.empty() ? String(u" DEFAULT VALUES") : u" (" + names + u") VALUES (" + values + u")");
  Prepared(sql, given, now, {}).Execute();
}

void SqlUpdater::WriteAll() {
  for (const Record& before : data_.deleted_) Delete(before);
  for (const auto& [row, before] : data_.edited_) Update(before, data_.Values(row));
  for (const RowSlot row : data_.inserted_) Insert(data_.Values(row));
}

}  // namespace zentavo
