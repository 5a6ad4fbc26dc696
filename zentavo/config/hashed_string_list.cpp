#include "zentavo/config/hashed_string_list.h"

#include <optional>

namespace zentavo {

namespace {

// The text before the first separator; nothing when there is none.
std::optional<StringView> NameOf(StringView line, char16_t separator) {
  const std::size_t place = line.find(separator);
  if (place == line.npos) return std::nullopt;
  return line.substr(0, place);
}

}  // namespace

TXHashedStringList::TXHashedStringList() = default;
TXHashedStringList::~TXHashedStringList() = default;

String TXHashedStringList::PrepareString(StringView S) const {
  return CaseSensitive() ? String(S) : AnsiUpperCase(S);
}

std::int32_t TXHashedStringList::IndexOf(StringView S) const {
  if (change_in_progress_) {
    if (!frozen_values_) FreezeValues();
    return frozen_values_->ValueOf(PrepareString(S));
  }
  if (!FValueHashValid) UpdateValueHash();
  const LineIndex::Entry* const entry = FValueHash.Find(S);
  return entry == nullptr ? -1 : entry->line;
}

std::int32_t TXHashedStringList::IndexOfName(StringView Name) const {
  if (change_in_progress_) {
    if (!frozen_names_) FreezeNames();
    return frozen_names_->ValueOf(PrepareString(Name));
  }
  if (!FNameHashValid) UpdateNameHash();
  const LineIndex::Entry* const entry = FNameHash.Find(Name);
  return entry == nullptr ? -1 : entry->line;
}

bool TXHashedStringList::FindLine(StringView Name, StringView& Line) const {
  if (change_in_progress_) {
    const std::int32_t index = IndexOfName(Name);
    if (index >= 0) Line = Strings(index);
    return index >= 0;
  }
  if (!FNameHashValid) UpdateNameHash();
  const LineIndex::Entry* const entry = FNameHash.Find(Name);
  if (entry != nullptr) Line = entry->Line();
  return entry != nullptr;
}

void TXHashedStringList::UpdateValueHash() const {
  FValueHash.Reset(static_cast<std::size_t>(Count()), CurrentCase());
  for (std::int32_t i = 0; i < Count(); ++i) EnterValue(i);
  storage_ = Storage();
  FValueHashValid = true;
}

void TXHashedStringList::UpdateNameHash() const {
  FNameHash.Reset(static_cast<std::size_t>(Count()), CurrentCase());
  for (std::int32_t i = 0; i < Count(); ++i) EnterName(i);
  storage_ = Storage();
  FNameHashValid = true;
}

void TXHashedStringList::EnterValue(std::int32_t index) const {
  FValueHash.Add(index, Strings(index), Strings(index).size());
}

void TXHashedStringList::EnterName(std::int32_t index) const {
  const std::optional<StringView> name = NameOf(Strings(index), NameValueSeparator());
  if (name) FNameHash.Add(index, Strings(index), name->size());
}

void TXHashedStringList::FreezeValues() const {
  frozen_values_ = std::make_unique<TXStringHash>();
  for (std::int32_t i = 0; i < Count(); ++i) frozen_values_->Add(PrepareString(Strings(i)), i);
}

void TXHashedStringList::FreezeNames() const {
  frozen_names_ = std::make_unique<TXStringHash>();
  for (std::int32_t i = 0; i < Count(); ++i) {
    const std::optional<StringView> name = NameOf(Strings(i), NameValueSeparator());
    if (name) frozen_names_->Add(PrepareString(*name), i);
  }
}

void TXHashedStringList::Changing() {
  TStringList::Changing();
  if (!change_in_progress_ && HasChangeHandler()) {
    if (FValueHashValid) FreezeValues();
    if (FNameHashValid) FreezeNames();
  }
  change_in_progress_ = true;
}

void TXHashedStringList::Invalidate() {
  FValueHashValid = false;
  FNameHashValid = false;
  frozen_values_.reset();
  frozen_names_.reset();
  change_in_progress_ = false;
}

void TXHashedStringList::Changed() {
  ++change_count_;
  try {
    TStringList::Changed();
  } catch (...) {
    Invalidate();
    throw;
  }
  Invalidate();
}

bool TXHashedStringList::NotifyAlone() {
  const std::uint32_t before = change_count_;
  Changed();
  return change_count_ == before + 1 && !HasChangeHandler();
}

void TXHashedStringList::Appended(std::int32_t index) {
  const bool stayed = storage_ == Storage();
  const bool values = FValueHashValid && stayed;
  const bool names = FNameHashValid && stayed;
  if (!NotifyAlone()) return;
  if (values) EnterValue(index);
  if (names) EnterName(index);
  FValueHashValid = values;
  FNameHashValid = names;
}

void TXHashedStringList::Replaced(std::int32_t index, StringView old_text) {
  const bool names = FNameHashValid;
  if (!NotifyAlone() || !names) return;
  const StringView text = Strings(index);
  const std::optional<StringView> name = NameOf(text, NameValueSeparator());
  FNameHashValid = name && FNameHash.Renew(index, old_text, text, name->size());
}

void TXHashedStringList::Rearranged() {
  FValueHashValid = false;
  FNameHashValid = false;
}

}  // namespace zentavo
