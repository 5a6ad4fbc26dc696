#include <libpq-fe.h>
#include <soci/postgresql/soci-postgresql.h>

#include <charconv>

#include "adapters/sql/statement.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

namespace {

// Object identifiers of the server's built-in types, which never change.
enum : Oid {
  kBool = 16,
  kBytea = 17,
  kInt8 = 20,
  kInt2 = 21,
  kInt4 = 23,
  kFloat4 = 700,
  kFloat8 = 701,
  kDate = 1082,
  kTimestamp = 1114,
  kNumeric = 1700,
};

TFieldType TypeOf(Oid oid) {
  switch (oid) {
    case kBool: return TFieldType::ftBoolean;
    case kBytea: return TFieldType::ftBlob;
    case kInt8: return TFieldType::ftLargeint;
    case kInt2:
    case kInt4: return TFieldType::ftInteger;
    case kFloat4:
    case kFloat8: return TFieldType::ftFloat;
    case kDate:
    case kTimestamp: return TFieldType::ftDateTime;
    case kNumeric: return TFieldType::ftBCD;
    default: return TFieldType::ftString;
  }
}

unsigned HexDigit(char digit) {
  return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
}

// From "\x" and two digits a byte.
Variant Bytes(std::string_view text) {
  Variant::ByteArray bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t at = 2; at + 1 < text.size(); at += 2) {
    bytes.push_back(static_cast<std::byte>(HexDigit(text[at]) * 16 + HexDigit(text[at + 1])));
  }
  return bytes;
}

class PostgresCursor final : public SqlCursor {
 public:
  explicit PostgresCursor(soci::statement& statement)
      : rows_(static_cast<soci::postgresql_statement_backend*>(statement.get_backend())
                  ->result_.get_result()),
        count_(PQntuples(rows_)) {}

  std::vector<SqlColumn> Columns() const override {
    std::vector<SqlColumn> columns;
    for (int i = 0; i < PQnfields(rows_); ++i) {
      const Oid oid = PQftype(rows_, i);
      columns.push_back({FromUtf8(PQfname(rows_, i)), TypeOf(oid), oid == kDate, false});
    }
    return columns;
  }

  bool AtRow() const override { return at_ < count_; }
  void Next() override { ++at_; }
  bool Read(std::size_t column, TFieldType type, FieldColumn& target, RowSlot row) const override {
    const int i = static_cast<int>(column);
    if (PQgetisnull(rows_, at_, i) != 0) return false;
    const std::string_view text(PQgetvalue(rows_, at_, i),
                                static_cast<std::size_t>(PQgetlength(rows_, at_, i)));
    switch (type) {
      case TFieldType::ftBoolean: target.Set(row, text == "t"); break;
      case TFieldType::ftBlob: target.Set(row, Bytes(text)); break;
      case TFieldType::ftInteger:
      case TFieldType::ftLargeint: {
        std::int64_t value = 0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        target.Set(row, value);
        break;
      }
      case TFieldType::ftFloat: target.SetFloat(row, Checked(TryReadFloat(text), i)); break;
      case TFieldType::ftDateTime: target.SetFloat(row, Checked(ParseDatabaseDate(text), i)); break;
      default: target.Set(row, FromUtf8(text));
    }
    return true;
  }

 private:
  // Takes NaN and the infinities too.
  static std::optional<double> TryReadFloat(std::string_view text) {
    double value = 0;
    const char* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, value).ptr == end ? std::optional(value)
                                                               : std::nullopt;
  }

  double Checked(std::optional<double> value, int column) const {
    if (value) return *value;
    throw EDatabaseError(Format(u"Field '%s' holds a value that no date or number can hold",
                                {FromUtf8(PQfname(rows_, column))}));
  }

  PGresult* rows_;
  int count_;
  int at_ = 0;
};

}  // namespace

std::unique_ptr<SqlCursor> MakePostgresCursor(soci::statement& statement) {
  return std::make_unique<PostgresCursor>(statement);
}

}  // namespace zentavo
