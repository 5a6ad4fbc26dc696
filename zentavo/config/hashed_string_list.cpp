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

TXHashedStringList::Rules TXHashedStringList::CurrentRules() const {
  return {CaseSensitive() ? KeyCase::kExact : KeyCase::kIgnored, NameValueSeparator()};
}

bool TXHashedStringList::SameKey(StringView a, StringView b) const {
  return a == b || (!CaseSensitive() && SameText(a, b));
}

std::int32_t TXHashedStringList::IndexOf(StringView S) const {
  if (change_in_progress_) {
    if (!frozen_values_) FreezeValues();
    return frozen_values_->ValueOf(PrepareString(S));
  }
  const Rules rules = CurrentRules();
  if (!FValueHashValid || value_rules_.key_case != rules.key_case) UpdateValueHash();
  return FValueHash.Find(KeyHash(S, rules.key_case),
                         [&](std::int32_t line) { return SameKey(Strings(line), S); });
}

std::int32_t TXHashedStringList::IndexOfName(StringView Name) const {
  if (change_in_progress_) {
    if (!frozen_names_) FreezeNames();
    return frozen_names_->ValueOf(PrepareString(Name));
  }
  const Rules rules = CurrentRules();
  if (!FNameHashValid || name_rules_ != rules) UpdateNameHash();
  return FNameHash.Find(KeyHash(Name, rules.key_case), [&](std::int32_t line) {
    return SameKey(*NameOf(Strings(line), rules.separator), Name);
  });
}

void TXHashedStringList::UpdateValueHash() const {
  FValueHash.Reset(static_cast<std::size_t>(Count()));
  value_rules_ = CurrentRules();
  for (std::int32_t i = 0; i < Count(); ++i) EnterValue(i);
  FValueHashValid = true;
}

void TXHashedStringList::UpdateNameHash() const {
  FNameHash.Reset(static_cast<std::size_t>(Count()));
  name_rules_ = CurrentRules();
  for (std::int32_t i = 0; i < Count(); ++i) EnterName(i);
  FNameHashValid = true;
}

void TXHashedStringList::EnterValue(std::int32_t index) const {
  const StringView text = Strings(index);
  FValueHash.Add(KeyHash(text, value_rules_.key_case), index,
                 [&](std::int32_t line) { return SameKey(Strings(line), text); });
}

void TXHashedStringList::EnterName(std::int32_t index) const {
  const std::optional<StringView> name = NameOf(Strings(index), name_rules_.separator);
  if (!name) return;
  FNameHash.Add(KeyHash(*name, name_rules_.key_case), index, [&](std::int32_t line) {
    return SameKey(*NameOf(Strings(line), name_rules_.separator), *name);
  });
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
  const Rules rules = CurrentRules();
  const bool values = FValueHashValid && value_rules_.key_case == rules.key_case;
  const bool names = FNameHashValid && name_rules_ == rules;
  if (!NotifyAlone()) return;
  if (values) EnterValue(index);
  if (names) EnterName(index);
  FValueHashValid = values;
  FNameHashValid = names;
}

void TXHashedStringList::Replaced(std::int32_t index, StringView old_text) {
  const Rules rules = CurrentRules();
  const bool names = FNameHashValid && name_rules_ == rules;
  if (!NotifyAlone() || !names) return;
  const std::optional<StringView> old_name = NameOf(old_text, rules.separator);
  const std::optional<StringView> name = NameOf(Strings(index), rules.separator);
  FNameHashValid = old_name && name && SameKey(*old_name, *name);
}

}  // namespace zentavo
