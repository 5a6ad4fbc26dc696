// Record sets with a cursor.
//
// A data set stands on one record, which its fields read. Edit, Append and Insert open a record for
// writing; Post stores it, Cancel gives it up. Moving the cursor first does what CheckBrowseMode
// does.
//
//   for (data.First(); !data.Eof(); data.Next()) total += amount.AsFloat();
//
// A data set and its fields are used by one thread at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "zentavo/framework/component.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/field.h"
#include "zentavo/framework/row_order.h"

namespace zentavo {

ZENTAVO_DECLARE_EXCEPTION(EDatabaseError, Exception);

enum class TDataSetState : std::uint8_t { dsInactive, dsBrowse, dsEdit, dsInsert };

// A record to come back to. It survives every change but the deletion of its own record, and is
// told apart from records that come later. A default one is no record's.
struct TBookmark {
  RowSlot row = kNoSlot;
  std::uint32_t generation = 0;
};

// Operations raise EDatabaseError "%s: Cannot perform this operation on a closed dataset" (with the
// data set's name) where the data set is not open, and what the handlers of events raise; a handler
// of a "before" event that raises keeps the operation from happening.
class ZENTAVO_API TDataSet : public TComponent {
 public:
  using NotifyEvent = std::function<void(TDataSet& sender)>;

  explicit TDataSet(String name = {});
  ~TDataSet() override;

  TDataSetState State() const { return FState; }
  bool Active() const { return FState != TDataSetState::dsInactive; }
  void Open();   // at the first record; nothing when open
  void Close();  // gives up what is not posted

  std::int32_t FieldCount() const { return static_cast<std::int32_t>(FFields.size()); }
  // By position from 0; raises EListError "List index out of bounds (%d)".
  TField& Fields(std::int32_t index) const;
  // By name without regard to case. FieldByName raises EDatabaseError "%s: Field '%s' not found",
  // FindField returns null.
  TField& FieldByName(StringView name) const;
  TField* FindField(StringView name) const;

  // Next on the last record leaves it current and sets Eof, Prior on the first Bof likewise; First
  // and Last set them too. An empty set has both.
  void First();
  void Last();
  void Next() {
    if (!StepInRun()) MoveBy(1);
  }
  void Prior() { MoveBy(-1); }
  // Returns by how many records the cursor moved, fewer than asked for at either end.
  std::int64_t MoveBy(std::int64_t distance);
  bool Bof() const { return bof_; }
  bool Eof() const { return eof_; }
  bool IsEmpty() const { return RecordCount() == 0; }
  std::int64_t RecordCount() const { return Active() ? StoredCount() : 0; }
  // From 1; of a record being inserted the number it will have; 0 without a record.
  std::int64_t RecNo() const;
  void SetRecNo(std::int64_t number);  // the nearest there is

  void Append();  // a new record at the end
  void Insert();  // a new record in front of the current one
  // Raises EDatabaseError "%s: Cannot perform this operation on an empty dataset". Nothing when a
  // record is open for writing.
  void Edit();
  // Raises EDatabaseError "%s: Dataset not in edit or insert mode", and "Field '%s' must have a
  // value" for a required field that is null; the record then stays open.
  void Post();
  void Cancel();
  // The following record is current afterwards, or the new last one. Gives up a record being
  // inserted. Raises what Edit raises.
  void Delete();
  // Posts a record that was modified, gives up one that was not; nothing when browsing.
  void CheckBrowseMode();
  // Whether a field was written since the record was opened for writing.
  bool Modified() const { return FModified; }

  // An invalid bookmark without a record, and while one is inserted.
  TBookmark GetBookmark() const;
  bool BookmarkValid(const TBookmark& bookmark) const;
  // Raises EDatabaseError "%s: Record not found".
  void GotoBookmark(const TBookmark& bookmark);

  // Counted. Between them OnDataChange is not called, and once at the end if it would have been.
  void DisableControls();
  void EnableControls();
  bool ControlsDisabled() const { return disabled_ > 0; }
  // For those who show the data: another record is current, or a value changed.
  void SetOnDataChange(NotifyEvent event) { FOnDataChange = std::move(event); }

  const NotifyEvent& BeforePost() const { return FBeforePost; }
  void SetBeforePost(NotifyEvent event) { FBeforePost = std::move(event); }
  const NotifyEvent& AfterPost() const { return FAfterPost; }
  void SetAfterPost(NotifyEvent event) { FAfterPost = std::move(event); }
  const NotifyEvent& BeforeEdit() const { return FBeforeEdit; }
  void SetBeforeEdit(NotifyEvent event) { FBeforeEdit = std::move(event); }
  const NotifyEvent& AfterEdit() const { return FAfterEdit; }
  void SetAfterEdit(NotifyEvent event) { FAfterEdit = std::move(event); }
  const NotifyEvent& BeforeDelete() const { return FBeforeDelete; }
  void SetBeforeDelete(NotifyEvent event) { FBeforeDelete = std::move(event); }
  const NotifyEvent& AfterDelete() const { return FAfterDelete; }
  void SetAfterDelete(NotifyEvent event) { FAfterDelete = std::move(event); }
  const NotifyEvent& BeforeScroll() const { return FBeforeScroll; }
  void SetBeforeScroll(NotifyEvent event) { FBeforeScroll = std::move(event); }
  const NotifyEvent& AfterScroll() const { return FAfterScroll; }
  void SetAfterScroll(NotifyEvent event) { FAfterScroll = std::move(event); }

 protected:
  friend class TField;

  // Where the records are kept. Positions count from 0. A row that NewRow makes is in no position
  // until it is inserted; DropRow frees it.
  virtual void OpenStore() = 0;
  virtual void CloseStore() = 0;
  virtual std::int64_t StoredCount() const = 0;
  // The row at `position` among its neighbours.
  virtual RowRun StoredRun(std::int64_t position) const = 0;
  virtual std::uint32_t Generation(RowSlot row) const = 0;
  virtual std::optional<std::int64_t> Find(const TBookmark& bookmark) const = 0;
  virtual RowSlot NewRow(RowSlot copied) = 0;  // all null when `copied` is kNoSlot
  virtual void DropRow(RowSlot row) = 0;
  virtual void StoreInserted(std::int64_t position, RowSlot row) = 0;
  // Moves the values of `edited` to `row` and frees `edited`.
  virtual void StoreEdited(RowSlot row, RowSlot edited) = 0;
  virtual void StoreDeleted(std::int64_t position) = 0;

  RowSlot StoredRow(std::int64_t position) const {
    const RowRun run = StoredRun(position);
    return run.rows[static_cast<std::size_t>(position - run.first)];
  }
  TField& TakeField(std::unique_ptr<TField> field);
  void DropFields() { FFields.clear(); }
  [[noreturn]] void Raise(StringView problem) const;
  void CheckActive() const;
  void CheckInactive() const;
  // The row that fields read and write, kNoSlot when there is none.
  RowSlot ActiveRow() const { return active_row_; }
  // Makes the record at `position`, or the last one, current without events.
  void StandOn(std::int64_t position);

 private:
  bool IsEditing() const {
    return FState == TDataSetState::dsEdit || FState == TDataSetState::dsInsert;
  }
  void CheckEditing() const;
  void CheckNotEmpty() const;
  void CheckRequired() const;
  void FieldChanged();
  void DataChanged();
  void Notify(const NotifyEvent& event) {
    if (event) event(*this);
  }
  void Scroll(std::int64_t position, bool bof, bool eof);
  // Makes the next record current where that takes no more than looking into the run, and nobody
  // wants to know.
  bool StepInRun() {
    const auto offset = static_cast<std::size_t>(position_ + 1 - run_.first);
    const bool watched = FBeforeScroll || FAfterScroll || FOnDataChange;
    if (FState != TDataSetState::dsBrowse || watched || offset >= run_.rows.size()) return false;
    ++position_;
    active_row_ = run_.rows[offset];
    bof_ = false;
    changed_while_disabled_ |= disabled_ > 0;
    return true;
  }
  void BeginInsert(std::int64_t position);
  void EndEditing();

  std::vector<std::unique_ptr<TField>> FFields;
  TDataSetState FState = TDataSetState::dsInactive;
  bool FModified = false;
  bool bof_ = true;
  bool eof_ = true;
  bool changed_while_disabled_ = false;
  int disabled_ = 0;
  std::int64_t position_ = 0;         // of the current record
  std::int64_t insert_position_ = 0;  // while inserting
  RowSlot active_row_ = kNoSlot;
  RowRun run_;  // with the current record, as long as no record is stored or deleted; or empty
  NotifyEvent FBeforePost, FAfterPost, FBeforeEdit, FAfterEdit;
  NotifyEvent FBeforeDelete, FAfterDelete, FBeforeScroll, FAfterScroll;
  NotifyEvent FOnDataChange;
};

}  // namespace zentavo
