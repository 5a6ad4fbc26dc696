// A table in memory.
//
//   TMemoryDataSet items(u"MTRL");
//   TField& code = items.AddField(u"CODE", TFieldType::ftString, 20);
//   items.Open();
//   items.Append();
//   code.SetAsString(u"A-1");
//   items.Post();
//
// Values are kept by field, so that reading one field of all records touches nothing else.
// Inserting and deleting anywhere cost the logarithm of the table.
#pragma once

#include <vector>

#include "zentavo/framework/data_set.h"
#include "zentavo/framework/row_order.h"

namespace zentavo {

class FieldColumn;

class ZENTAVO_API TMemoryDataSet : public TDataSet {
 public:
  using TDataSet::TDataSet;
  ~TMemoryDataSet() override;

  // Adds a field behind the others. Only while closed and without records: raises EDatabaseError
  // "%s: Cannot perform this operation on an open dataset", "... on a dataset with records" and
  // "%s: Duplicate field name '%s'".
  TField& AddField(StringView name, TFieldType type, std::int32_t size = 0);

  // Deletes all records at once, without events. Closing keeps them.
  void EmptyTable();

 protected:
  void OpenStore() override {}
  void CloseStore() override {}
  std::int64_t StoredCount() const override { return order_.Size(); }
  RowRun StoredRun(std::int64_t position) const override { return order_.RunAt(position); }
  std::uint32_t Generation(RowSlot row) const override { return generations_[row]; }
  std::optional<std::int64_t> Find(const TBookmark& bookmark) const override;
  RowSlot NewRow(RowSlot copied) override;
  void DropRow(RowSlot row) override;
  void StoreInserted(std::int64_t position, RowSlot row) override;
  void StoreEdited(RowSlot row, RowSlot edited) override;
  void StoreDeleted(std::int64_t position) override;

  // Forgets records and fields.
  void ClearDefinition();
  FieldColumn& Column(std::size_t field) { return *columns_[field]; }

 private:
  void Grow();

  std::vector<FieldColumn*> columns_;  // owned by the fields
  RowOrder order_;
  std::vector<std::uint32_t> generations_;  // by row; changes when the row is freed
  std::vector<RowSlot> free_;               // the one to take next is the last
};

}  // namespace zentavo
