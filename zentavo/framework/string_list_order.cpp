// Searching and sorting.
#include <algorithm>
#include <iterator>
#include <numeric>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/string_list.h"

namespace zentavo {

namespace {

// What one entry is sorted by: its text as it compares, led by that text's first units as a number,
// which settles most comparisons; equal ones keep the order of their indices.
struct SortKey {
  std::uint64_t lead;
  StringView text;
  std::size_t index;

  bool operator<(const SortKey& other) const {
    if (lead != other.lead) return lead < other.lead;
    const int order = text.compare(other.text);
    return order != 0 ? order < 0 : index < other.index;
  }
};

std::uint64_t LeadOf(StringView text) {
  constexpr std::size_t kLeadUnits = 4;
  std::uint64_t lead = 0;
  for (std::size_t i = 0; i < kLeadUnits; ++i) {
    lead = lead << 16 | (i < text.size() ? text[i] : u'\0');
  }
  return lead;
}

StringView AppendUpper(String& folded, StringView text) {
  const std::size_t start = folded.size();
  for (const char16_t unit : text) folded += UpperUnit(unit);
  return StringView(folded).substr(start);
}

}  // namespace

int TStringList::CompareStrings(StringView a, StringView b) const {
  return case_sensitive_ ? CompareStr(a, b) : CompareText(a, b);
}

std::int32_t TStringList::LowerBound(StringView text) const {
  const auto place = std::lower_bound(
      items_.begin(), items_.end(), text,
      [this](const Item& item, StringView key) { return CompareStrings(item.text, key) < 0; });
  return static_cast<std::int32_t>(place - items_.begin());
}

std::int32_t TStringList::UpperBound(StringView text) const {
  const auto place = std::upper_bound(
      items_.begin(), items_.end(), text,
      [this](StringView key, const Item& item) { return CompareStrings(key, item.text) < 0; });
  return static_cast<std::int32_t>(place - items_.begin());
}

bool TStringList::EqualsAt(std::int32_t index, StringView text) const {
  const String& entry = items_[static_cast<std::size_t>(index)].text;
  if (entry.size() != text.size()) return false;  // case mapping keeps the length
  return case_sensitive_ ? entry == text : SameText(entry, text);
}

bool TStringList::Find(StringView text, std::int32_t& index) const {
  index = LowerBound(text);
  return index < Count() && EqualsAt(index, text);
}

std::int32_t TStringList::IndexOf(StringView text) const {
  std::int32_t index = 0;
  if (sorted_) return Find(text, index) ? index : -1;
  while (index < Count() && !EqualsAt(index, text)) ++index;
  return index < Count() ? index : -1;
}

std::int32_t TStringList::IndexOfValue(Attached value) const {
  const auto place = std::find_if(items_.begin(), items_.end(),
                                  [value](const Item& item) { return item.value == value; });
  return place == items_.end() ? -1 : static_cast<std::int32_t>(place - items_.begin());
}

void TStringList::SortItems(std::vector<Item>& items) const {
  String folded;
  if (!case_sensitive_) {
    // Reserved in full: the keys refer to the text.
    folded.reserve(std::accumulate(
        items.begin(), items.end(), std::size_t{0},
        [](std::size_t size, const Item& item) { return size + item.text.size(); }));
  }
  std::vector<SortKey> keys;
  keys.reserve(items.size());
  for (const Item& item : items) {
    const StringView text =
        case_sensitive_ ? StringView(item.text) : AppendUpper(folded, item.text);
    keys.push_back({LeadOf(text), text, keys.size()});
  }
  std::sort(keys.begin(), keys.end());
  std::vector<Item> ordered;
  ordered.reserve(items.size());
  for (const SortKey& key : keys) ordered.push_back(std::move(items[key.index]));
  items = std::move(ordered);
}

void TStringList::SortAll() {
  if (items_.size() < 2) return;
  Changing();
  SortItems(items_);
  Changed();
}

void TStringList::Sort() {
  if (!sorted_) SortAll();
}

void TStringList::SetSorted(bool sorted) {
  if (sorted) Sort();
  sorted_ = sorted;
}

void TStringList::SetCaseSensitive(bool case_sensitive) {
  if (case_sensitive_ == case_sensitive) return;
  case_sensitive_ = case_sensitive;
  Rearranged();
  if (sorted_) SortAll();
}

void TStringList::CustomSort(const CompareFunction& compare) {
  CheckNotSorted();
  if (items_.size() < 2) return;
  std::vector<std::int32_t> order(items_.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](std::int32_t index1, std::int32_t index2) {
    return compare(*this, index1, index2) < 0;
  });
  std::vector<Item> ordered;
  ordered.reserve(items_.size());
  Changing();
  for (const std::int32_t index : order) {
    ordered.push_back(std::move(items_[static_cast<std::size_t>(index)]));
  }
  items_ = std::move(ordered);
  Changed();
}

std::vector<TStringList::Item> TStringList::Admitted(std::vector<Item> added,
                                                     const std::vector<Item>& present) const {
  if (!sorted_) return added;
  SortItems(added);
  if (duplicates_ == TDuplicates::dupAccept) return added;
  const auto before = [this](const Item& a, const Item& b) {
    return CompareStrings(a.text, b.text) < 0;
  };
  std::vector<Item> admitted;
  for (Item& item : added) {
    const bool repeated = !admitted.empty() && !before(admitted.back(), item);
    if (!repeated && !std::binary_search(present.begin(), present.end(), item, before)) {
      admitted.push_back(std::move(item));
    } else if (duplicates_ == TDuplicates::dupError) {
      throw EStringListError(u"String list does not allow duplicates");
    }
  }
  return admitted;
}

void TStringList::AddStrings(const TStringList& source) {
  std::vector<Item> added = source.items_;
  if (owns_objects_) {
    for (Item& item : added) item.value = 0;
  }
  added = Admitted(std::move(added), items_);
  if (added.empty()) return;
  Changing();
  const auto middle = items_.insert(items_.end(), std::make_move_iterator(added.begin()),
                                    std::make_move_iterator(added.end()));
  if (sorted_) {
    std::inplace_merge(items_.begin(), middle, items_.end(), [this](const Item& a, const Item& b) {
      return CompareStrings(a.text, b.text) < 0;
    });
  }
  Changed();
}

}  // namespace zentavo
