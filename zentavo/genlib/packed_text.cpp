#include "zentavo/genlib/packed_text.h"

#include <vector>

#include "zentavo/framework/data_set.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/format_settings.h"
#include "zentavo/genlib/stock_formats.h"

namespace zentavo {

namespace {

constexpr char16_t kEscape = u'\\';
constexpr char16_t kEndOfValue = u'|';
constexpr char16_t kEndOfRecord = u'~';

constexpr bool NeedsEscape(char16_t unit) {
  return unit == kEndOfValue || unit == kEndOfRecord || unit == kEscape;
}

constexpr bool MayStandInFloat(char16_t unit) {
  return IsDigit(unit) || unit == u'+' || unit == u'-' || unit == u'E' || unit == u'e';
}

// Appends what has been read of a value, run by run between escapes.
void AppendEscaped(String& out, StringView value) {
  std::size_t start = 0;
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (!NeedsEscape(value[at])) continue;
    out.append(value.substr(start, at - start)) += kEscape;
    start = at;
  }
  out.append(value.substr(start));
}

}  // namespace

String CompressField(StringView Value, bool IsFloat) {
  const char16_t separator = FormatSettings().DecimalSeparator;
  String out;
  out.reserve(Value.size());
  if (!IsFloat || separator == u'.') {
    AppendEscaped(out, Value);
    return out;
  }
  for (const char16_t unit : Value) {
    if (NeedsEscape(unit)) out += kEscape;
    out += unit == separator ? u'.' : unit;
  }
  return out;
}

String ExtractCompressed(StringView Text, std::int32_t& Position, char16_t Terminator) {
  String out;
  if (Position < 1) return out;
  std::size_t at = static_cast<std::size_t>(Position) - 1;
  for (; at < Text.size() && Text[at] != Terminator; ++at) {
    if (Text[at] == kEscape && Terminator != kEndOfRecord && ++at == Text.size()) break;
    out += Text[at];
  }
  if (at < Text.size()) ++at;
  Position = static_cast<std::int32_t>(at) + 1;
  return out;
}

bool ExtractRecord(StringView Text, std::int32_t& Position, std::vector<String>& Values) {
  Values.clear();
  const auto length = static_cast<std::int32_t>(Text.size());
  if (Position < 1 || Position > length) return false;
  while (Position <= length && Text[static_cast<std::size_t>(Position) - 1] != kEndOfRecord) {
    Values.push_back(ExtractCompressed(Text, Position, kEndOfValue));
  }
  ++Position;
  return true;
}

String CheckCompressedFloat(StringView Value, bool IsFloat) {
  String out(Value);
  if (!IsFloat) return out;
  const char16_t separator = FormatSettings().DecimalSeparator;
  for (char16_t& unit : out) {
    if (!MayStandInFloat(unit)) unit = separator;
  }
  return out;
}

namespace {

constexpr int kPackedDates = 2;  // the stock formats

// Disables the controls of a data set for the life of a scope.
class DisabledControls {
 public:
  explicit DisabledControls(TDataSet& data_set) : data_set_(data_set) {
    data_set_.DisableControls();
  }
  DisabledControls(const DisabledControls&) = delete;
  DisabledControls& operator=(const DisabledControls&) = delete;
  ~DisabledControls() { data_set_.EnableControls(); }

 private:
  TDataSet& data_set_;
};

// Appends the values of a data set's fields, one record after the other.
class RecordPacker {
 public:
  explicit RecordPacker(const TDataSet& data_set) {
    for (std::int32_t i = 0; i < data_set.FieldCount(); ++i) fields_.push_back(&data_set.Fields(i));
  }

  void AppendRecord(String& out) {
    for (const TField* const field : fields_) {
      if (!field->IsNull()) AppendValue(out, *field);
      out += kEndOfValue;
    }
    out += kEndOfRecord;
  }

 private:
  void AppendValue(String& out, const TField& field) {
    if (field.DataType() == TFieldType::ftDateTime) {
      out += DateToStr(field.AsFloat(), StockFormatSettings(kPackedDates));
      return;
    }
    if (IsPlainNumber(field.DataType())) {
      field.AppendText(out);
      return;
    }
    text_.clear();
    field.AppendText(text_);
    if (field.DataType() == TFieldType::ftFloat && !points_) {
      out += CompressField(text_, true);
    } else {
      AppendEscaped(out, text_);
    }
  }

  // Whether the field's text holds nothing to escape or to change.
  bool IsPlainNumber(TFieldType type) const {
    return type == TFieldType::ftInteger || type == TFieldType::ftLargeint ||
           (type == TFieldType::ftFloat && points_);
  }

  std::vector<const TField*> fields_;
  bool points_ = FormatSettings().DecimalSeparator == u'.';
  String text_;
};

}  // namespace

String CompressDataSet(TDataSet& DataSet) {
  String out;
  const DisabledControls disabled(DataSet);
  RecordPacker packer(DataSet);
  for (DataSet.First(); !DataSet.Eof(); DataSet.Next()) packer.AppendRecord(out);
  DataSet.First();
  return out;
}

}  // namespace zentavo
