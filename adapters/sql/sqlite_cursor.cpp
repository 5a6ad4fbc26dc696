#include <soci/sqlite3/soci-sqlite3.h>

#include <string>

#include "adapters/sql/statement.h"
#include "zentavo/framework/format.h"

namespace zentavo {

namespace {

using sqlite_api::sqlite3_column_type;

struct DeclaredType {
  std::string_view part;  // of the declaration, in upper case
  TFieldType type;
};

// In the order in which they are looked for.
constexpr DeclaredType kDeclaredTypes[] = {
    {"INT", TFieldType::ftLargeint},       {"CHAR", TFieldType::ftString},
    {"CLOB", TFieldType::ftString},        {"TEXT", TFieldType::ftString},
    {"BLOB", TFieldType::ftBlob},          {"REAL", TFieldType::ftFloat},
    {"FLOA", TFieldType::ftFloat},         {"DOUB", TFieldType::ftFloat},
    {"BOOL", TFieldType::ftBoolean},       {"DATE", TFieldType::ftDateTime},
    {"TIMESTAMP", TFieldType::ftDateTime}, {"NUMERIC", TFieldType::ftBCD},
    {"DECIMAL", TFieldType::ftBCD},
};

TFieldType TypeOfDeclaration(std::string_view declaration) {
  const std::string upper = ToUtf8(AnsiUpperCase(FromUtf8(declaration)));
  for (const auto& [part, type] : kDeclaredTypes) {
    if (upper.find(part) != std::string::npos) return type;
  }
  return TFieldType::ftString;
}

TFieldType TypeOfValue(int sqlite_type) {
  switch (sqlite_type) {
    case SQLITE_INTEGER: return TFieldType::ftLargeint;
    case SQLITE_FLOAT: return TFieldType::ftFloat;
    case SQLITE_BLOB: return TFieldType::ftBlob;
    default: return TFieldType::ftString;
  }
}

class SqliteCursor final : public SqlCursor {
 public:
  explicit SqliteCursor(soci::statement& statement)
      : backend_(*static_cast<soci::sqlite3_statement_backend*>(statement.get_backend())),
        rows_(backend_.stmt_),
        at_row_(sqlite_api::sqlite3_data_count(rows_) > 0) {}

  std::vector<SqlColumn> Columns() const override {
    std::vector<SqlColumn> columns;
    for (int i = 0; i < sqlite_api::sqlite3_column_count(rows_); ++i) {
      SqlColumn& column = columns.emplace_back();
      column.name = FromUtf8(sqlite_api::sqlite3_column_name(rows_, i));
      const char* const declared = sqlite_api::sqlite3_column_decltype(rows_, i);
      column.undeclared = declared == nullptr;
      column.type = declared != nullptr ? TypeOfDeclaration(declared)
                                        : TypeOfValue(sqlite3_column_type(rows_, i));
      column.date_only = declared != nullptr && SameText(FromUtf8(declared), u"DATE");
    }
    return columns;
  }

  bool AtRow() const override { return at_row_; }

  void Next() override {
    at_row_ = backend_.fetch(1) == soci::details::statement_backend::ef_success &&
              sqlite_api::sqlite3_data_count(rows_) > 0;
  }

  // Values are read past the library's lock: the connection is used by one thread at a time.
  bool Read(std::size_t column, TFieldType type, FieldColumn& target, RowSlot row) const override {
    const int i = static_cast<int>(column);
    Value* const value = sqlite_api::sqlite3_column_value(rows_, i);
    const int held = sqlite_api::sqlite3_value_type(value);
    if (held == SQLITE_NULL) return false;
    switch (type) {
      case TFieldType::ftLargeint:
      case TFieldType::ftBoolean:
        Expect(held == SQLITE_INTEGER, i);
        target.Set(row, std::int64_t{sqlite_api::sqlite3_value_int64(value)});
        break;
      case TFieldType::ftFloat:
        Expect(held == SQLITE_FLOAT || held == SQLITE_INTEGER, i);
        target.SetFloat(row, sqlite_api::sqlite3_value_double(value));
        break;
      case TFieldType::ftBlob: target.Set(row, Bytes(value)); break;
      case TFieldType::ftBCD: ReadDecimal(value, held, target, row); break;
      case TFieldType::ftDateTime: {
        const auto date = ParseDatabaseDate(Utf8(value));
        Expect(date.has_value(), i);
        target.SetFloat(row, *date);
        break;
      }
      default:
        text_.clear();
        AppendFromUtf8(text_, Utf8(value));
        target.SetText(row, text_);
    }
    return true;
  }

 private:
  using Value = sqlite_api::sqlite3_value;

  void Expect(bool fits, int column) const {
    if (fits) return;
    throw EDatabaseError(Format(u"Field '%s' holds a value of another type",
                                {FromUtf8(sqlite_api::sqlite3_column_name(rows_, column))}));
  }

  static std::string_view Utf8(Value* value) {
    const void* const text = sqlite_api::sqlite3_value_text(value);
    return {static_cast<const char*>(text),
            static_cast<std::size_t>(sqlite_api::sqlite3_value_bytes(value))};
  }

  static Variant Bytes(Value* value) {
    const auto* const first = static_cast<const std::byte*>(sqlite_api::sqlite3_value_blob(value));
    return Variant::ByteArray(first, first + sqlite_api::sqlite3_value_bytes(value));
  }

  // A double's own text in this database has 15 digits only.
  static void ReadDecimal(Value* value, int held, FieldColumn& target, RowSlot row) {
    if (held == SQLITE_FLOAT) {
      target.SetFloat(row, sqlite_api::sqlite3_value_double(value));
    } else {
      target.Set(row, FromUtf8(Utf8(value)));
    }
  }

  soci::sqlite3_statement_backend& backend_;
  sqlite_api::sqlite3_stmt* rows_;
  bool at_row_;
  mutable String text_;  // room for the text being read
};

}  // namespace

std::unique_ptr<SqlCursor> MakeSqliteCursor(soci::statement& statement) {
  return std::make_unique<SqliteCursor>(statement);
}

}  // namespace zentavo
