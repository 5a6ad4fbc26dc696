#include "zentavo/framework/string_list.h"

#include <algorithm>
#include <iterator>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"

namespace zentavo {

TStringList::TStringList() : line_break_(PlatformLineBreak()) {}

TStringList::~TStringList() {
  ReleaseAll(items_);
}

void TStringList::CheckIndex(std::int32_t index) const {
  if (index >= 0 && index < Count()) return;
  throw EStringListError(u"List index out of bounds (" + IntToStr(index) + u")");
}

void TStringList::CheckNotSorted() const {
  if (sorted_) throw EStringListError(u"Operation not allowed on sorted list");
}

void TStringList::CheckOwnsObjects() const {
  if (!owns_objects_) throw EStringListError(u"String list does not own objects");
}

void TStringList::Release(Attached value) const {
  if (owns_objects_) std::unique_ptr<TObject>(reinterpret_cast<TObject*>(value)).reset();
}

void TStringList::ReleaseAll(const std::vector<Item>& items) const {
  for (const Item& item : items) Release(item.value);
}

void TStringList::SetCapacity(std::int32_t capacity) {
  if (capacity < Count()) {
    throw EStringListError(u"List capacity out of bounds (" + IntToStr(capacity) + u")");
  }
  std::vector<Item> items;
  items.reserve(static_cast<std::size_t>(capacity));
  std::move(items_.begin(), items_.end(), std::back_inserter(items));
  items_ = std::move(items);
  Rearranged();
}

void TStringList::SetNameValueSeparator(char16_t unit) {
  name_value_separator_ = unit;
  Rearranged();
}

const String& TStringList::Strings(std::int32_t index) const {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)].text;
}

void TStringList::SetString(std::int32_t index, StringView text) {
  CheckNotSorted();
  CheckIndex(index);
  String copy(text);
  Changing();
  items_[static_cast<std::size_t>(index)].text.swap(copy);
  Replaced(index, copy);
}

TStringList::Attached TStringList::Value(std::int32_t index) const {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)].value;
}

void TStringList::SetValue(std::int32_t index, Attached value) {
  CheckIndex(index);
  Changing();
  const Attached old = std::exchange(items_[static_cast<std::size_t>(index)].value, value);
  if (old != value) Release(old);
  Changed();
}

TObject* TStringList::Objects(std::int32_t index) const {
  return reinterpret_cast<TObject*>(Value(index));
}

void TStringList::SetObject(std::int32_t index, std::unique_ptr<TObject> object) {
  CheckOwnsObjects();
  CheckIndex(index);
  SetValue(index, reinterpret_cast<Attached>(object.release()));
}

std::pair<std::int32_t, bool> TStringList::PlaceFor(StringView text) const {
  if (!sorted_) return {Count(), true};
  std::int32_t index = 0;
  if (!Find(text, index)) return {index, true};
  if (duplicates_ == TDuplicates::dupAccept) return {UpperBound(text), true};
  if (duplicates_ == TDuplicates::dupIgnore) return {index, false};
  throw EStringListError(u"String list does not allow duplicates");
}

void TStringList::InsertItem(std::int32_t index, Item item) {
  Changing();
  items_.insert(items_.begin() + index, std::move(item));
  Inserted(index);
}

void TStringList::Inserted(std::int32_t index) {
  if (index + 1 == Count()) {
    Appended(index);
  } else {
    Changed();
  }
}

std::int32_t TStringList::Add(StringView text) {
  return AddValue(text, 0);
}

std::int32_t TStringList::AddValue(StringView text, Attached value) {
  const auto [index, is_new] = PlaceFor(text);
  if (is_new) InsertItem(index, {String(text), value});
  return index;
}

std::int32_t TStringList::AddObject(StringView text, std::unique_ptr<TObject> object) {
  CheckOwnsObjects();
  const auto [index, is_new] = PlaceFor(text);
  if (!is_new) return index;
  Item item = {String(text), reinterpret_cast<Attached>(object.get())};
  Changing();
  items_.insert(items_.begin() + index, std::move(item));
  static_cast<void>(object.release());  // the entry owns it, even when a handler raises
  Inserted(index);
  return index;
}

void TStringList::Insert(std::int32_t index, StringView text, Attached value) {
  CheckNotSorted();
  if (index != Count()) CheckIndex(index);
  InsertItem(index, {String(text), value});
}

void TStringList::Delete(std::int32_t index) {
  CheckIndex(index);
  Changing();
  const Attached value = items_[static_cast<std::size_t>(index)].value;
  items_.erase(items_.begin() + index);
  Release(value);
  Changed();
}

void TStringList::Exchange(std::int32_t index1, std::int32_t index2) {
  CheckNotSorted();
  CheckIndex(index1);
  CheckIndex(index2);
  Changing();
  std::swap(items_[static_cast<std::size_t>(index1)], items_[static_cast<std::size_t>(index2)]);
  Changed();
}

void TStringList::Move(std::int32_t from, std::int32_t to) {
  CheckNotSorted();
  CheckIndex(from);
  CheckIndex(to);
  Changing();
  const auto begin = items_.begin();
  if (from < to) {
    std::rotate(begin + from, begin + from + 1, begin + to + 1);
  } else {
    std::rotate(begin + to, begin + from, begin + from + 1);
  }
  Changed();
}

void TStringList::Clear() {
  if (!items_.empty()) ReplaceItems({});
}

void TStringList::ReplaceItems(std::vector<Item> items) {
  Changing();
  items_.swap(items);
  ReleaseAll(items);
  Changed();
}

void TStringList::Assign(const TStringList& source) {
  if (this == &source) return;
  std::vector<Item> items = source.items_;
  Changing();
  items_.swap(items);
  ReleaseAll(items);
  owns_objects_ = false;
  line_break_ = source.line_break_;
  duplicates_ = source.duplicates_;
  name_value_separator_ = source.name_value_separator_;
  delimiter_ = source.delimiter_;
  quote_char_ = source.quote_char_;
  sorted_ = source.sorted_;
  case_sensitive_ = source.case_sensitive_;
  strict_delimiter_ = source.strict_delimiter_;
  encoding_ = source.encoding_;
  Changed();
}

bool TStringList::Equals(const TStringList& other) const {
  return std::equal(items_.begin(), items_.end(), other.items_.begin(), other.items_.end(),
                    [](const Item& a, const Item& b) { return a.text == b.text; });
}

void TStringList::BeginUpdate() {
  if (update_count_++ == 0 && on_changing_) on_changing_(*this);
}

void TStringList::EndUpdate() {
  if (update_count_ == 0) return;
  if (--update_count_ == 0 && on_change_) on_change_(*this);
}

void TStringList::Changing() {
  if (update_count_ == 0 && on_changing_) on_changing_(*this);
}

void TStringList::Changed() {
  if (update_count_ == 0 && on_change_) on_change_(*this);
}

void TStringList::Appended(std::int32_t) {
  Changed();
}

void TStringList::Replaced(std::int32_t, StringView) {
  Changed();
}

void TStringList::Rearranged() {}

}  // namespace zentavo
