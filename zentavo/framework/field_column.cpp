#include "zentavo/framework/field_column.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/decimal_text.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

FieldColumn::~FieldColumn() = default;

void FieldColumn::Resize(std::size_t rows) {
  ResizeValues(rows);
  nulls_.resize(rows, 1);
}

void FieldColumn::Clear(RowSlot row) {
  if (nulls_[row] == 0) ClearValue(row);
  nulls_[row] = 1;
}

void FieldColumn::CopyRow(RowSlot from, RowSlot to) {
  if (nulls_[from] == 0) CopyValue(from, to);
  nulls_[to] = nulls_[from];
}

void FieldColumn::SwapRows(RowSlot a, RowSlot b) {
  SwapValues(a, b);
  std::swap(nulls_[a], nulls_[b]);
}

void FieldColumn::Set(RowSlot row, const Variant& value) {
  SetValue(row, value);
  nulls_[row] = 0;
}

void FieldColumn::SetFloat(RowSlot row, double value) {
  SetFloatValue(row, value);
  nulls_[row] = 0;
}

void FieldColumn::SetText(RowSlot row, StringView text) {
  SetTextValue(row, text);
  nulls_[row] = 0;
}

namespace {

// How a type of field keeps and converts its values. The defaults go through a variant.
template <typename T>
struct Conversions {
  using Stored = T;
  static Variant Get(const T& value) { return value; }
};

struct IntegerField : Conversions<std::int32_t> {
  static std::int32_t FromVariant(const Variant& value) { return VarToInt32(value); }
  static std::int32_t FromText(StringView text) { return StrToInt(text); }
  static void AppendText(String& out, std::int32_t value) { AppendInt(out, value); }
};

struct LargeintField : Conversions<std::int64_t> {
  static std::int64_t FromVariant(const Variant& value) { return VarToInt64(value); }
  static std::int64_t FromText(StringView text) { return StrToInt64(text); }
  static void AppendText(String& out, std::int64_t value) { AppendInt(out, value); }
};

struct BooleanField : Conversions<std::uint8_t> {
  static Variant Get(std::uint8_t value) { return value != 0; }
  static std::uint8_t FromVariant(const Variant& value) { return VarToBoolean(value) ? 1 : 0; }
  static std::uint8_t FromText(StringView text) { return FromVariant(text); }
};

struct FloatField : Conversions<double> {
  static double FromVariant(const Variant& value) { return VarToDouble(value); }
  static double FromText(StringView text) { return StrToFloat(text); }
  static void AppendText(String& out, double value) {
    AppendFloat(out, value, FormatSettings().DecimalSeparator);
  }
};

struct CurrencyField : Conversions<std::int64_t> {
  static Variant Get(std::int64_t units) { return Variant::CurrencyUnits(units); }
  static std::int64_t FromFloat(double value) {
    const double units = std::round(value * 10000);
    if (!(std::fabs(units) < 9.2e18)) throw ERangeError(u"Range check error");
    return static_cast<std::int64_t>(units);
  }
  static std::int64_t FromVariant(const Variant& value) {
    if (value.Kind() == VariantKind::kCurrency) return value.CurrencyUnitsValue();
    return FromFloat(VarToDouble(value));
  }
  static std::int64_t FromText(StringView text) { return FromFloat(StrToFloat(text)); }
};

struct DateTimeField : Conversions<double> {
  static Variant Get(double value) { return Variant::Date(value); }
  static double FromVariant(const Variant& value) { return VarToDateTime(value); }
  static double FromText(StringView text) { return StrToDateTime(text); }
};

struct DateField : DateTimeField {
  static void AppendText(String& out, double value) { out += DateToStr(value); }
};

struct TimeField : DateTimeField {
  static double FromText(StringView text) { return StrToTime(text); }
  static void AppendText(String& out, double value) { out += TimeToStr(value); }
};

struct TextField : Conversions<String> {
  static String FromVariant(const Variant& value) { return VarToStr(value); }
  static String FromText(StringView text) { return String(text); }
  static void AppendText(String& out, const String& value) { out += value; }
};

struct BcdField : Conversions<String> {
  static String FromVariant(const Variant& value) { return VarToDecimalText(value); }
  static String FromText(StringView text) {
    String plain(text);
    const char16_t separator = FormatSettings().DecimalSeparator;
    std::replace(plain.begin(), plain.end(), separator, u'.');
    if (!TryStrToFloat(plain, u'.')) RaiseNotFloat(text);
    return FromVariant(plain);
  }
  static void AppendText(String& out, const String& value) {
    const std::size_t start = out.size();
    out += value;
    std::replace(out.begin() + static_cast<std::ptrdiff_t>(start), out.end(), u'.',
                 FormatSettings().DecimalSeparator);
  }
};

struct BytesField : Conversions<Variant::ByteArray> {
  static Variant::ByteArray FromVariant(const Variant& value) {
    if (value.Kind() == VariantKind::kByteArray) return value.ByteArrayValue();
    return FromText(VarToStr(value));
  }
  static Variant::ByteArray FromText(StringView text) {
    const AnsiString bytes = ToSystemAnsi(text);
    const auto* const first = reinterpret_cast<const std::byte*>(bytes.data());
    return {first, first + bytes.size()};
  }
};

template <typename Kind>
class TypedColumn final : public FieldColumn {
  using Stored = typename Kind::Stored;

 public:
  Variant Get(RowSlot row) const override { return Kind::Get(values_[row]); }
  double GetFloat(RowSlot row) const override {
    if constexpr (std::is_same_v<Stored, double>) {
      return values_[row];
    } else {
      return VarToDouble(Get(row));
    }
  }
  void AppendText(String& out, RowSlot row) const override {
    if constexpr (requires(const Stored& value) { Kind::AppendText(out, value); }) {
      Kind::AppendText(out, values_[row]);
    } else {
      AppendVariant(out, Get(row));
    }
  }

 protected:
  void ResizeValues(std::size_t rows) override { values_.resize(rows); }
  void ClearValue(RowSlot row) override { values_[row] = Stored(); }
  void CopyValue(RowSlot from, RowSlot to) override { values_[to] = values_[from]; }
  void SwapValues(RowSlot a, RowSlot b) override { std::swap(values_[a], values_[b]); }
  void SetValue(RowSlot row, const Variant& value) override {
    values_[row] = Kind::FromVariant(value);
  }
  void SetFloatValue(RowSlot row, double value) override {
    if constexpr (std::is_same_v<Stored, double>) {
      values_[row] = value;
    } else {
      SetValue(row, value);
    }
  }
  void SetTextValue(RowSlot row, StringView text) override {
    if constexpr (std::is_same_v<Kind, TextField>) {
      values_[row].assign(text);
    } else {
      values_[row] = Kind::FromText(text);
    }
  }

 private:
  std::vector<Stored> values_;
};

}  // namespace

std::unique_ptr<FieldColumn> MakeColumn(TFieldType type) {
  switch (type) {
    case TFieldType::ftInteger: return std::make_unique<TypedColumn<IntegerField>>();
    case TFieldType::ftLargeint: return std::make_unique<TypedColumn<LargeintField>>();
    case TFieldType::ftFloat: return std::make_unique<TypedColumn<FloatField>>();
    case TFieldType::ftCurrency: return std::make_unique<TypedColumn<CurrencyField>>();
    case TFieldType::ftBCD: return std::make_unique<TypedColumn<BcdField>>();
    case TFieldType::ftBoolean: return std::make_unique<TypedColumn<BooleanField>>();
    case TFieldType::ftDate: return std::make_unique<TypedColumn<DateField>>();
    case TFieldType::ftTime: return std::make_unique<TypedColumn<TimeField>>();
    case TFieldType::ftDateTime: return std::make_unique<TypedColumn<DateTimeField>>();
    case TFieldType::ftBlob:
    case TFieldType::ftBytes: return std::make_unique<TypedColumn<BytesField>>();
    default: return std::make_unique<TypedColumn<TextField>>();
  }
}

}  // namespace zentavo
