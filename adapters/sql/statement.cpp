#include "adapters/sql/statement.h"

#include <array>
#include <charconv>

#include "zentavo/framework/decimal_text.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

namespace {

AnsiString DateText(TDateTime value) {
  const TFormatSettings plain;
  const DayAndTime parts = SplitDateTime(value);
  String text = DateToStr(value, plain);
  if (parts.millisecond != 0) text.append(u" ").append(TimeToStr(value, plain));
  const std::int32_t milliseconds = parts.millisecond % 1000;
  if (milliseconds != 0) text.append(u".").append(IntToStr(1000 + milliseconds), 1);
  return ToUtf8(text);
}

AnsiString HexText(const Variant::ByteArray& bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  AnsiString text = "\\x";
  text.reserve(2 + 2 * bytes.size());
  for (const std::byte byte : bytes) {
    text += kDigits[std::to_integer<unsigned>(byte) >> 4];
    text += kDigits[std::to_integer<unsigned>(byte) & 15];
  }
  return text;
}

AnsiString DoubleText(double value) {
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

// How a value goes to the database.
enum class Transport { kText, kInteger, kDouble, kBlob };

Transport TransportOf(VariantKind kind, SqlDialect dialect) {
  if (dialect == SqlDialect::kPostgres) return Transport::kText;
  switch (kind) {
    case VariantKind::kBoolean:
    case VariantKind::kInteger:
    case VariantKind::kInt64: return Transport::kInteger;
    case VariantKind::kSingle:
    case VariantKind::kDouble: return Transport::kDouble;
    case VariantKind::kByteArray: return Transport::kBlob;
    default: return Transport::kText;
  }
}

AnsiString TransportText(const Variant& value) {
  switch (value.Kind()) {
    case VariantKind::kBoolean: return value.BooleanValue() ? "true" : "false";
    case VariantKind::kSingle:
    case VariantKind::kDouble: return DoubleText(value.DoubleValue());
    case VariantKind::kCurrency: return ToUtf8(VarToDecimalText(value));
    case VariantKind::kDate: return DateText(value.DoubleValue());
    case VariantKind::kByteArray: return HexText(value.ByteArrayValue());
    default: return ToUtf8(VarToStr(value));
  }
}

}  // namespace

// One parameter, in the form in which it goes to the database.
struct SqlStatement::Bound {
  Transport transport = Transport::kText;
  soci::indicator indicator = soci::i_null;
  std::string text;
  long long integer = 0;
  double number = 0;
  std::unique_ptr<soci::blob> blob;
};

SqlStatement::SqlStatement(SqlSession& session, StringView sql, const SqlParameters& parameters)
    : session_(session) {
  WithDatabaseErrors([&] {
    statement_ = std::make_unique<soci::statement>(session_.session);
    statement_->alloc();
    for (const auto& [name, value] : parameters) {
      Bound& bound = Add(ToUtf8(name), value);
      Assign(bound, value);
    }
    statement_->prepare(ToUtf8(sql));
    statement_->define_and_bind();
  });
}

SqlStatement::~SqlStatement() = default;

SqlStatement::Bound& SqlStatement::Add(const AnsiString& name, const Variant& value) {
  Bound& bound = bound_.emplace_back();
  bound.transport = TransportOf(value.Kind(), session_.dialect);
  switch (bound.transport) {
    case Transport::kInteger:
      statement_->exchange(soci::use(bound.integer, bound.indicator, name));
      break;
    case Transport::kDouble:
      statement_->exchange(soci::use(bound.number, bound.indicator, name));
      break;
    case Transport::kBlob:
      bound.blob = std::make_unique<soci::blob>(session_.session);
      statement_->exchange(soci::use(*bound.blob, bound.indicator, name));
      break;
    case Transport::kText:
      statement_->exchange(soci::use(bound.text, bound.indicator, name));
      break;
  }
  return bound;
}

void SqlStatement::Assign(Bound& bound, const Variant& value) {
  const bool null = value.IsNull() || value.IsEmpty();
  bound.indicator = null ? soci::i_null : soci::i_ok;
  if (null) return;
  switch (bound.transport) {
    case Transport::kInteger: bound.integer = value.Int64Value(); break;
    case Transport::kDouble: bound.number = value.DoubleValue(); break;
    case Transport::kText: bound.text = TransportText(value); break;
    case Transport::kBlob: {
      const Variant::ByteArray& bytes = value.ByteArrayValue();
      bound.blob->trim(0);
      bound.blob->write(0, reinterpret_cast<const char*>(bytes.data()), bytes.size());
      break;
    }
  }
}

void SqlStatement::Bind(const std::vector<Variant>& values) {
  WithDatabaseErrors([&] {
    for (std::size_t i = 0; i < values.size(); ++i) Assign(bound_[i], values[i]);
  });
}

void SqlStatement::Execute() {
  WithDatabaseErrors([&] { statement_->execute(true); });
}

std::unique_ptr<SqlCursor> SqlStatement::Query() {
  return WithDatabaseErrors([&] {
    statement_->execute(true);
    return session_.dialect == SqlDialect::kSqlite ? MakeSqliteCursor(*statement_)
                                                   : MakePostgresCursor(*statement_);
  });
}

namespace {

// Takes `digits` digits off the front of `text`, and `separator` behind them if there is one.
bool TakeNumber(std::string_view& text, std::size_t digits, int& value) {
  if (text.size() < digits) return false;
  const char* const end = text.data() + digits;
  if (std::from_chars(text.data(), end, value).ptr != end) return false;
  text.remove_prefix(digits);
  return true;
}

bool TakeCharacter(std::string_view& text, std::string_view expected) {
  if (text.empty() || expected.find(text.front()) == std::string_view::npos) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<TDateTime> TakeTime(std::string_view& text) {
  int hour = 0;
  int minute = 0;
  int second = 0;
  if (!TakeNumber(text, 2, hour) || !TakeCharacter(text, ":") || !TakeNumber(text, 2, minute)) {
    return std::nullopt;
  }
  if (TakeCharacter(text, ":") && !TakeNumber(text, 2, second)) return std::nullopt;
  int milliseconds = 0;
  if (TakeCharacter(text, ".")) {
    int scale = 100;
    for (; !text.empty() && text.front() >= '0' && text.front() <= '9'; text.remove_prefix(1)) {
      milliseconds += scale * (text.front() - '0');
      scale /= 10;
    }
  }
  return TryEncodeTime(hour, minute, second, milliseconds);
}

}  // namespace

std::optional<TDateTime> ParseDatabaseDate(std::string_view text) {
  int year = 0;
  int month = 0;
  int day = 0;
  if (!TakeNumber(text, 4, year) || !TakeCharacter(text, "-") || !TakeNumber(text, 2, month) ||
      !TakeCharacter(text, "-") || !TakeNumber(text, 2, day)) {
    return std::nullopt;
  }
  const auto date = TryEncodeDate(year, month, day);
  if (!date || text.empty()) return date;
  if (!TakeCharacter(text, " T")) return std::nullopt;
  const auto time = TakeTime(text);
  if (!time || !text.empty()) return std::nullopt;
  const auto milliseconds = SplitDateTime(*time).millisecond;
  return JoinDateTime({SplitDateTime(*date).day, milliseconds});
}

}  // namespace zentavo
