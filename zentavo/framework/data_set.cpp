#include "zentavo/framework/data_set.h"

#include <algorithm>
#include <utility>

#include "zentavo/framework/format.h"

namespace zentavo {

EDatabaseError::~EDatabaseError() = default;

TDataSet::TDataSet(String name) : TComponent(std::move(name)) {}
TDataSet::~TDataSet() = default;

void TDataSet::Raise(StringView problem) const {
  throw EDatabaseError(Name() + u": " + String(problem));
}

void TDataSet::CheckActive() const {
  if (!Active()) Raise(u"Cannot perform this operation on a closed dataset");
}

void TDataSet::CheckInactive() const {
  if (Active()) Raise(u"Cannot perform this operation on an open dataset");
}

void TDataSet::CheckNotEmpty() const {
  CheckActive();
  if (IsEmpty()) Raise(u"Cannot perform this operation on an empty dataset");
}

void TDataSet::CheckEditing() const {
  if (!IsEditing()) Raise(u"Dataset not in edit or insert mode");
}

void TDataSet::CheckRequired() const {
  for (const auto& field : FFields) {
    if (field->Required() && field->IsNull()) {
      throw EDatabaseError(Format(u"Field '%s' must have a value", {field->Name()}));
    }
  }
}

TField& TDataSet::TakeField(std::unique_ptr<TField> field) {
  if (FindField(field->Name()) != nullptr) {
    Raise(Format(u"Duplicate field name '%s'", {field->Name()}));
  }
  FFields.push_back(std::move(field));
  return *FFields.back();
}

TField& TDataSet::Fields(std::int32_t index) const {
  if (index < 0 || index >= FieldCount()) {
    throw EListError(Format(u"List index out of bounds (%d)", {index}));
  }
  return *FFields[static_cast<std::size_t>(index)];
}

TField* TDataSet::FindField(StringView name) const {
  const auto place = std::find_if(FFields.begin(), FFields.end(),
                                  [&](const auto& field) { return SameText(field->Name(), name); });
  return place == FFields.end() ? nullptr : place->get();
}

TField& TDataSet::FieldByName(StringView name) const {
  TField* const field = FindField(name);
  if (field == nullptr) Raise(Format(u"Field '%s' not found", {Excerpt(name)}));
  return *field;
}

void TDataSet::Open() {
  if (Active()) return;
  OpenStore();
  FState = TDataSetState::dsBrowse;
  StandOn(0);
  bof_ = true;
  DataChanged();
}

void TDataSet::Close() {
  if (!Active()) return;
  Cancel();
  CloseStore();
  run_ = {};
  FState = TDataSetState::dsInactive;
  active_row_ = kNoSlot;
  bof_ = eof_ = true;
  DataChanged();
}

void TDataSet::StandOn(std::int64_t position) {
  const std::int64_t count = StoredCount();
  bof_ = eof_ = count == 0;
  position_ = std::clamp<std::int64_t>(position, 0, std::max<std::int64_t>(count - 1, 0));
  run_ = count == 0 ? RowRun() : StoredRun(position_);
  active_row_ = count == 0 ? kNoSlot : run_.rows[static_cast<std::size_t>(position_ - run_.first)];
}

void TDataSet::Scroll(std::int64_t position, bool bof, bool eof) {
  Notify(FBeforeScroll);
  StandOn(position);
  bof_ |= bof;
  eof_ |= eof;
  DataChanged();
  Notify(FAfterScroll);
}

void TDataSet::First() {
  CheckBrowseMode();
  Scroll(0, true, false);
}

void TDataSet::Last() {
  CheckBrowseMode();
  Scroll(StoredCount() - 1, false, true);
}

std::int64_t TDataSet::MoveBy(std::int64_t distance) {
  CheckBrowseMode();
  if (distance == 0 || (distance > 0 ? eof_ : bof_)) return 0;
  const std::int64_t last = StoredCount() - 1;
  const std::int64_t target =
      position_ + std::clamp(distance, -position_ - 1, last - position_ + 1);
  const std::int64_t from = position_;
  Scroll(target, target<0, target> last);
  return position_ - from;
}

std::int64_t TDataSet::RecNo() const {
  if (FState == TDataSetState::dsInsert) return insert_position_ + 1;
  return active_row_ == kNoSlot ? 0 : position_ + 1;
}

void TDataSet::SetRecNo(std::int64_t number) {
  CheckBrowseMode();
  Scroll(number - 1, false, false);
}

void TDataSet::BeginInsert(std::int64_t position) {
  active_row_ = NewRow(kNoSlot);
  insert_position_ = position;
  FState = TDataSetState::dsInsert;
  FModified = false;
  bof_ = eof_ = false;
  DataChanged();
}

void TDataSet::Append() {
  CheckBrowseMode();
  BeginInsert(StoredCount());
}

void TDataSet::Insert() {
  CheckBrowseMode();
  BeginInsert(position_);
}

void TDataSet::Edit() {
  CheckActive();
  if (IsEditing()) return;
  CheckNotEmpty();
  Notify(FBeforeEdit);
  active_row_ = NewRow(active_row_);
  FState = TDataSetState::dsEdit;
  FModified = false;
  Notify(FAfterEdit);
}

void TDataSet::EndEditing() {
  FState = TDataSetState::dsBrowse;
  FModified = false;
  StandOn(position_);
  DataChanged();
}

void TDataSet::Post() {
  CheckActive();
  CheckEditing();
  Notify(FBeforePost);
  CheckRequired();
  run_ = {};
  if (FState == TDataSetState::dsInsert) {
    StoreInserted(insert_position_, active_row_);
    position_ = insert_position_;
  } else {
    StoreEdited(StoredRow(position_), active_row_);
  }
  EndEditing();
  Notify(FAfterPost);
}

void TDataSet::Cancel() {
  if (!IsEditing()) return;
  DropRow(active_row_);
  EndEditing();
}

void TDataSet::Delete() {
  CheckActive();
  if (FState == TDataSetState::dsInsert) {
    Cancel();
    return;
  }
  CheckNotEmpty();
  Notify(FBeforeDelete);
  Cancel();
  run_ = {};
  StoreDeleted(position_);
  StandOn(position_);
  DataChanged();
  Notify(FAfterDelete);
  Notify(FAfterScroll);
}

void TDataSet::CheckBrowseMode() {
  if (FState == TDataSetState::dsBrowse) return;
  CheckActive();
  if (FModified) {
    Post();
  } else {
    Cancel();
  }
}

TBookmark TDataSet::GetBookmark() const {
  if (active_row_ == kNoSlot || FState == TDataSetState::dsInsert) return {};
  const RowSlot row = StoredRow(position_);
  return {row, Generation(row)};
}

bool TDataSet::BookmarkValid(const TBookmark& bookmark) const {
  return Active() && Find(bookmark).has_value();
}

void TDataSet::GotoBookmark(const TBookmark& bookmark) {
  CheckBrowseMode();
  const auto position = Find(bookmark);
  if (!position) Raise(u"Record not found");
  Scroll(*position, false, false);
}

void TDataSet::DisableControls() {
  ++disabled_;
}

void TDataSet::EnableControls() {
  if (disabled_ == 0 || --disabled_ > 0) return;
  if (std::exchange(changed_while_disabled_, false)) DataChanged();
}

void TDataSet::FieldChanged() {
  FModified = true;
  DataChanged();
}

void TDataSet::DataChanged() {
  if (disabled_ > 0) {
    changed_while_disabled_ = true;
  } else {
    Notify(FOnDataChange);
  }
}

}  // namespace zentavo
