// The values of one field in all rows of a table.
#pragma once

#include <memory>
#include <vector>

#include "zentavo/framework/field_types.h"
#include "zentavo/framework/row_order.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

// Rows are slots, 0 up to the size; new ones are null. The getters of a null row give what the row
// held before, or a default; the setters make it not null and leave it as it was when they raise.
class ZENTAVO_API FieldColumn {
 public:
  virtual ~FieldColumn();

  bool IsNull(RowSlot row) const { return nulls_[row] != 0; }
  void Resize(std::size_t rows);
  // Makes the row null and frees what it holds.
  void Clear(RowSlot row);
  void CopyRow(RowSlot from, RowSlot to);
  void SwapRows(RowSlot a, RowSlot b);

  virtual Variant Get(RowSlot row) const = 0;
  // Raises what the conversions of variants raise.
  void Set(RowSlot row, const Variant& value);
  virtual double GetFloat(RowSlot row) const = 0;
  void SetFloat(RowSlot row, double value);
  // The text for users, by the thread's format settings; SetText reads it back. Raises what the
  // readers of numbers and dates raise.
  virtual void AppendText(String& out, RowSlot row) const = 0;
  void SetText(RowSlot row, StringView text);

 protected:
  virtual void ResizeValues(std::size_t rows) = 0;
  virtual void ClearValue(RowSlot row) = 0;
  virtual void CopyValue(RowSlot from, RowSlot to) = 0;
  virtual void SwapValues(RowSlot a, RowSlot b) = 0;
  virtual void SetValue(RowSlot row, const Variant& value) = 0;
  virtual void SetFloatValue(RowSlot row, double value) = 0;
  virtual void SetTextValue(RowSlot row, StringView text) = 0;

 private:
  std::vector<std::uint8_t> nulls_;
};

ZENTAVO_API std::unique_ptr<FieldColumn> MakeColumn(TFieldType type);

}  // namespace zentavo
