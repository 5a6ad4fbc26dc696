// Prepared statements with bound values, and the rows they return.
#pragma once

#include <deque>
#include <memory>
#include <optional>

#include "adapters/sql/connection.h"
#include "adapters/sql/session.h"
#include "zentavo/framework/field_column.h"

namespace zentavo {

// What a column of a result is.
struct SqlColumn {
  String name;
  TFieldType type = TFieldType::ftString;
  bool date_only = false;   // of dates: without a time
  bool undeclared = false;  // the type is that of the first row
};

// The rows of an executed statement, one after the other.
class SqlCursor {
 public:
  virtual ~SqlCursor() = default;
  virtual std::vector<SqlColumn> Columns() const = 0;
  virtual bool AtRow() const = 0;
  virtual void Next() = 0;
  // Puts a value into `row` of `target`, whose type is the column's; false for null.
  virtual bool Read(std::size_t column, TFieldType type, FieldColumn& target,
                    RowSlot row) const = 0;
};

std::unique_ptr<SqlCursor> MakeSqliteCursor(soci::statement& statement);
std::unique_ptr<SqlCursor> MakePostgresCursor(soci::statement& statement);

// "yyyy-mm-dd" and, behind a blank or 'T', "hh:mm:ss" with any decimals; milliseconds are kept.
// Empty when the text is none.
std::optional<TDateTime> ParseDatabaseDate(std::string_view text);

// A statement that can be executed again with other values. Raises EDatabaseError.
class SqlStatement {
 public:
  SqlStatement(SqlSession& session, StringView sql, const SqlParameters& parameters);
  SqlStatement(const SqlStatement&) = delete;
  SqlStatement& operator=(const SqlStatement&) = delete;
  ~SqlStatement();

  // `values` in the order of the parameters, each of the same kind as before or null.
  void Bind(const std::vector<Variant>& values);
  void Execute();
  // The rows; used before the next Execute.
  std::unique_ptr<SqlCursor> Query();

 private:
  struct Bound;
  Bound& Add(const AnsiString& name, const Variant& value);
  static void Assign(Bound& bound, const Variant& value);

  SqlSession& session_;
  std::unique_ptr<soci::statement> statement_;
  std::deque<Bound> bound_;
};

}  // namespace zentavo
