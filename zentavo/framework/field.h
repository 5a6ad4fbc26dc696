// One named value of a data set's current record.
#pragma once

#include <functional>
#include <memory>

#include "zentavo/framework/component.h"
#include "zentavo/framework/field_types.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

class FieldColumn;
class TDataSet;
class TStream;

// A field reads and writes the current record of its data set, which owns it; where there is none
// it is null. Its name is the field's name.
//
// A value is converted to the field's type; what the conversion raises passes to the caller and
// leaves the old value. All setters raise EDatabaseError
//   "%s: Dataset not in edit or insert mode"  (with the data set's name)
//   "Field '%s' cannot be modified"           for a read-only field
//   "Field '%s' holds at most %d characters"  for a longer text in a string field with a size
class ZENTAVO_API TField : public TComponent {
 public:
  using NotifyEvent = std::function<void(TField& sender)>;

  // Fields are made by their data sets.
  TField(TDataSet& data_set, String name, TFieldType type, std::int32_t size,
         std::unique_ptr<FieldColumn> column);
  ~TField() override;

  TDataSet& DataSet() const { return FDataSet; }
  TFieldType DataType() const { return FDataType; }
  // The most UTF-16 units of a string, 0 for any number; of other types what the maker said.
  std::int32_t Size() const { return FSize; }

  bool IsNull() const;
  void Clear();  // makes it null

  // Null, or a variant of the type's kind: a string for BCD, whose digits it keeps; a byte array
  // for blobs and bytes. Null and Empty make the field null.
  Variant Value() const;
  void SetValue(const Variant& value);

  // The text for users, by the thread's format settings; the empty text for null. Setting the empty
  // text makes null what is no text. Raises what StrToFloat, StrToInt and StrToDateTime raise.
  String AsString() const;
  void SetAsString(StringView text);
  void AppendText(String& out) const;  // AsString, appended
  // The same in the system code page.
  AnsiString AsAnsiString() const;
  void SetAsAnsiString(std::string_view bytes);
  // Null counts 0, false and 0 days. The getters raise what the conversions of variants raise.
  double AsFloat() const;
  void SetAsFloat(double value);
  std::int32_t AsInteger() const;
  void SetAsInteger(std::int32_t value) { SetValue(value); }
  std::int64_t AsInt64() const;
  void SetAsInt64(std::int64_t value) { SetValue(value); }
  bool AsBoolean() const;
  void SetAsBoolean(bool value) { SetValue(value); }
  TDateTime AsDateTime() const;
  void SetAsDateTime(TDateTime value) { SetValue(Variant::Date(value)); }

  // The bytes of a blob, or the text of another field in the system code page. Loading reads to the
  // stream's end.
  void LoadFromStream(TStream& stream);
  void SaveToStream(TStream& stream) const;

  bool ReadOnly() const { return FReadOnly; }
  void SetReadOnly(bool read_only) { FReadOnly = read_only; }
  // Whether posting refuses null.
  bool Required() const { return FRequired; }
  void SetRequired(bool required) { FRequired = required; }

  // Called with the new value in the field, before it counts as changed; an exception puts the old
  // one back and passes to whoever wrote it.
  const NotifyEvent& OnValidate() const { return FOnValidate; }
  void SetOnValidate(NotifyEvent event) { FOnValidate = std::move(event); }
  const NotifyEvent& OnChange() const { return FOnChange; }
  void SetOnChange(NotifyEvent event) { FOnChange = std::move(event); }

 private:
  // Runs `write` on the current row between the checks and the events.
  template <typename Write>
  void Change(Write write);
  void CheckLength(std::size_t units) const;
  bool HoldsBytes() const;

  TDataSet& FDataSet;
  TFieldType FDataType;
  std::int32_t FSize;
  bool FReadOnly = false;
  bool FRequired = false;
  NotifyEvent FOnValidate;
  NotifyEvent FOnChange;
  std::unique_ptr<FieldColumn> column_;
};

}  // namespace zentavo
