#include "zentavo/framework/field.h"

#include <utility>
#include <vector>

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/data_set.h"
#include "zentavo/framework/field_column.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/stream.h"
#include "zentavo/framework/variant_convert.h"

namespace zentavo {

TField::TField(TDataSet& data_set, String name, TFieldType type, std::int32_t size,
               std::unique_ptr<FieldColumn> column)
    : TComponent(std::move(name)),
      FDataSet(data_set),
      FDataType(type),
      FSize(size),
      column_(std::move(column)) {}

TField::~TField() = default;

bool TField::IsNull() const {
  const RowSlot row = FDataSet.ActiveRow();
  return row == kNoSlot || column_->IsNull(row);
}

Variant TField::Value() const {
  return IsNull() ? Variant::Null() : column_->Get(FDataSet.ActiveRow());
}

String TField::AsString() const {
  String text;
  AppendText(text);
  return text;
}

void TField::AppendText(String& out) const {
  if (!IsNull()) column_->AppendText(out, FDataSet.ActiveRow());
}

AnsiString TField::AsAnsiString() const {
  return ToSystemAnsi(AsString());
}

double TField::AsFloat() const {
  return IsNull() ? 0 : column_->GetFloat(FDataSet.ActiveRow());
}

std::int32_t TField::AsInteger() const {
  return IsNull() ? 0 : VarToInt32(column_->Get(FDataSet.ActiveRow()));
}

std::int64_t TField::AsInt64() const {
  return IsNull() ? 0 : VarToInt64(column_->Get(FDataSet.ActiveRow()));
}

bool TField::AsBoolean() const {
  return !IsNull() && VarToBoolean(column_->Get(FDataSet.ActiveRow()));
}

TDateTime TField::AsDateTime() const {
  return IsNull() ? 0 : VarToDateTime(column_->Get(FDataSet.ActiveRow()));
}

template <typename Write>
void TField::Change(Write write) {
  FDataSet.CheckEditing();
  if (FReadOnly) throw EDatabaseError(Format(u"Field '%s' cannot be modified", {Name()}));
  const RowSlot row = FDataSet.ActiveRow();
  if (FOnValidate) {
    const Variant before = Value();
    write(row);
    try {
      FOnValidate(*this);
    } catch (...) {
      before.IsNull() ? column_->Clear(row) : column_->Set(row, before);
      throw;
    }
  } else {
    write(row);
  }
  FDataSet.FieldChanged();
  if (FOnChange) FOnChange(*this);
}

void TField::CheckLength(std::size_t units) const {
  if (FDataType != TFieldType::ftString || FSize <= 0) return;
  if (units <= static_cast<std::size_t>(FSize)) return;
  throw EDatabaseError(Format(u"Field '%s' holds at most %d characters", {Name(), FSize}));
}

void TField::Clear() {
  Change([&](RowSlot row) { column_->Clear(row); });
}

void TField::SetValue(const Variant& value) {
  if (value.IsNull() || value.IsEmpty()) {
    Clear();
    return;
  }
  if (value.IsString()) CheckLength(value.StringValue().size());
  Change([&](RowSlot row) { column_->Set(row, value); });
}

void TField::SetAsString(StringView text) {
  const bool is_text = FDataType == TFieldType::ftString || FDataType == TFieldType::ftMemo;
  if (text.empty() && !is_text) {
    Clear();
    return;
  }
  CheckLength(text.size());
  Change([&](RowSlot row) { column_->SetText(row, text); });
}

void TField::SetAsAnsiString(std::string_view bytes) {
  SetAsString(FromSystemAnsi(bytes));
}

void TField::SetAsFloat(double value) {
  Change([&](RowSlot row) { column_->SetFloat(row, value); });
}

bool TField::HoldsBytes() const {
  return FDataType == TFieldType::ftBlob || FDataType == TFieldType::ftBytes;
}

void TField::LoadFromStream(TStream& stream) {
  std::vector<std::byte> bytes(static_cast<std::size_t>(stream.Size() - stream.Position()));
  stream.ReadBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  if (HoldsBytes()) {
    SetValue(Variant(std::move(bytes)));
  } else {
    SetAsAnsiString({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
}

void TField::SaveToStream(TStream& stream) const {
  if (IsNull()) return;
  const Variant value = Value();
  if (HoldsBytes()) {
    const Variant::ByteArray& bytes = value.ByteArrayValue();
    stream.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  } else {
    const AnsiString text = AsAnsiString();
    stream.WriteBuffer(text.data(), static_cast<std::int64_t>(text.size()));
  }
}

}  // namespace zentavo
