#include "zentavo/framework/memory_data_set.h"

#include <algorithm>
#include <utility>

#include "zentavo/framework/field_column.h"

namespace zentavo {

TMemoryDataSet::~TMemoryDataSet() = default;

TField& TMemoryDataSet::AddField(StringView name, TFieldType type, std::int32_t size) {
  CheckInactive();
  if (order_.Size() > 0) Raise(u"Cannot perform this operation on a dataset with records");
  auto column = MakeColumn(type);
  FieldColumn& kept = *column;
  kept.Resize(generations_.size());
  TField& field =
      TakeField(std::make_unique<TField>(*this, String(name), type, size, std::move(column)));
  columns_.push_back(&kept);
  return field;
}

void TMemoryDataSet::EmptyTable() {
  Cancel();
  while (order_.Size() > 0) StoreDeleted(order_.Size() - 1);
  if (Active()) StandOn(0);
}

void TMemoryDataSet::ClearDefinition() {
  order_.Clear();
  columns_.clear();
  free_.clear();
  generations_.clear();
  DropFields();
}

std::optional<std::int64_t> TMemoryDataSet::Find(const TBookmark& bookmark) const {
  if (bookmark.row >= generations_.size()) return std::nullopt;
  if (generations_[bookmark.row] != bookmark.generation) return std::nullopt;
  return order_.PositionOf(bookmark.row);
}

void TMemoryDataSet::Grow() {
  constexpr std::size_t kFirstRows = 64;
  const std::size_t before = generations_.size();
  const std::size_t rows = std::max(kFirstRows, before + before / 2);
  if (rows >= kNoSlot) Raise(u"Too many records");
  for (FieldColumn* const column : columns_) column->Resize(rows);
  generations_.resize(rows, 1);
  free_.reserve(rows);
  for (std::size_t row = rows; row-- > before;) free_.push_back(static_cast<RowSlot>(row));
}

RowSlot TMemoryDataSet::NewRow(RowSlot copied) {
  if (free_.empty()) Grow();
  const RowSlot row = free_.back();
  if (copied != kNoSlot) {
    for (FieldColumn* const column : columns_) column->CopyRow(copied, row);
  }
  free_.pop_back();
  return row;
}

void TMemoryDataSet::DropRow(RowSlot row) {
  for (FieldColumn* const column : columns_) column->Clear(row);
  ++generations_[row];
  free_.push_back(row);
}

void TMemoryDataSet::StoreInserted(std::int64_t position, RowSlot row) {
  order_.Insert(position, row);
}

void TMemoryDataSet::StoreEdited(RowSlot row, RowSlot edited) {
  for (FieldColumn* const column : columns_) column->SwapRows(row, edited);
  DropRow(edited);
}

void TMemoryDataSet::StoreDeleted(std::int64_t position) {
  const RowSlot row = order_.At(position);
  order_.Erase(position);
  DropRow(row);
}

}  // namespace zentavo
