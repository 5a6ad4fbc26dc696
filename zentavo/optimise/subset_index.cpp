#include "zentavo/optimise/subset_index.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

#include "zentavo/framework/mix_bits.h"

namespace zentavo::optimise_internal {

namespace {

constexpr RowIndex kNoRow = -1;
constexpr std::size_t kBlock = 32;  // rows
// Every further column with two codes on the left doubles the lists to look at.
constexpr std::size_t kMostNearColumns = 4;

std::size_t At(RowIndex row) {
  return static_cast<std::size_t>(row);
}

}  // namespace

bool SubsetIndex::Build(const MatchTables& tables, ColumnSet columns,
                        std::span<const RowIndex> rows) {
  columns_ = columns;
  ChooseKey(tables);
  const auto can_agree = [&](RowIndex row) { return (columns & ~tables.RightColumns(row)) == 0; };
  const auto count = static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), can_agree));
  if (count == 0) return false;
  slots_.assign(std::bit_ceil(count * 2), kNoRow);
  next_.resize(static_cast<std::size_t>(tables.RightCount()));
  // In blocks, so that the memory brings the slots of many rows at the same time.
  std::array<std::size_t, kBlock> places;
  std::array<RowIndex, kBlock> block;
  for (auto row = rows.rbegin(); row != rows.rend();) {
    std::size_t in_block = 0;
    for (; in_block < kBlock && row != rows.rend(); ++row) {
      if (!can_agree(*row)) continue;
      places[in_block] = PlaceOf(tables.RightCodes(*row));
      Prefetch(&slots_[places[in_block]]);
      block[in_block++] = *row;
    }
    for (std::size_t i = 0; i < in_block; ++i) {
      RowIndex& head = SlotFrom(places[i], tables, tables.RightCodes(block[i]));
      next_[At(block[i])] = head;
      head = block[i];
    }
  }
  return true;
}

void SubsetIndex::PrefetchFirst(const MatchTables& tables, std::size_t place) const {
  const RowIndex head = slots_[place];
  if (head == kNoRow) return;
  Prefetch(tables.RightCodes(head));
  Prefetch(&next_[At(head)]);
}

void SubsetIndex::ChooseKey(const MatchTables& tables) {
  key_.clear();
  near_.clear();
  std::int64_t highest = 0;
  needs_score_ = false;
  for (std::size_t column = 0; column < tables.Columns().size(); ++column) {
    const MatchColumn& one = tables.Columns()[column];
    if (one.weight < 0) needs_score_ = true;
    highest += one.weight;
    if ((columns_ >> column & 1) == 0) continue;
    if (one.comparison != Comparison::kEqualCodes) needs_score_ = true;
    const bool near = one.comparison == Comparison::kNearCodes;
    if (one.comparison == Comparison::kCells || (near && near_.size() == kMostNearColumns))
      continue;
    if (near) near_.push_back(static_cast<std::uint8_t>(column));
    key_.push_back(static_cast<std::uint8_t>(column));
  }
  if (!std::in_range<std::int32_t>(highest)) needs_score_ = true;
  wanted_.resize(tables.Columns().size());
}

std::size_t SubsetIndex::PlaceOf(const Code* codes) const {
  std::uint64_t hash = 0;
  std::uint64_t factor = 0x9E3779B97F4A7C15;
  for (const std::uint8_t column : key_) {
    hash += static_cast<std::uint32_t>(codes[column]) * factor;
    factor += 0x3C6EF372FE94F82A;  // even, so that every factor is odd
  }
  return static_cast<std::size_t>(MixBits(hash)) & (slots_.size() - 1);
}

// The list of the rows with these codes, or the empty slot where it belongs.
RowIndex& SubsetIndex::SlotOf(const MatchTables& tables, const Code* codes) {
  return SlotFrom(PlaceOf(codes), tables, codes);
}

RowIndex& SubsetIndex::SlotFrom(std::size_t place, const MatchTables& tables, const Code* codes) {
  const std::size_t mask = slots_.size() - 1;
  while (slots_[place] != kNoRow && !SameKey(tables.RightCodes(slots_[place]), codes)) {
    place = (place + 1) & mask;
  }
  return slots_[place];
}

bool SubsetIndex::SameKey(const Code* a, const Code* b) const {
  return std::all_of(key_.begin(), key_.end(),
                     [&](std::uint8_t column) { return a[column] == b[column]; });
}

RowIndex SubsetIndex::First(const MatchTables& tables, const UsedRows& used, RowIndex left,
                            std::size_t place, RowIndex limit, std::int32_t score) {
  const Code* const codes = tables.LeftCodes(left);
  if (near_.empty()) {
    return FirstInList(tables, used, left, limit, score, SlotFrom(place, tables, codes));
  }
  // Each near column by its first or its second code, in all combinations.
  for (unsigned choice = 0; choice < 1U << near_.size(); ++choice) {
    std::copy_n(codes, wanted_.size(), wanted_.begin());
    bool exists = true;
    for (std::size_t i = 0; i < near_.size(); ++i) {
      const Code second = codes[tables.Columns()[near_[i]].second_code];
      Code& wanted = wanted_[near_[i]];
      if ((choice >> i & 1) != 0) wanted = second == wanted ? kNoCode : second;
      exists = exists && wanted != kNoCode;
    }
    if (!exists) continue;
    limit = FirstInList(tables, used, left, limit, score, SlotOf(tables, wanted_.data()));
  }
  return limit;
}

// Takes used rows out of the list on the way, but for the last, by which the list is found.
RowIndex SubsetIndex::FirstInList(const MatchTables& tables, const UsedRows& used, RowIndex left,
                                  RowIndex limit, std::int32_t score, RowIndex& head) {
  RowIndex* link = &head;
  while (*link != kNoRow && *link < limit) {
    const RowIndex row = *link;
    RowIndex& next = next_[At(row)];
    if (used[At(row)] != 0) {
      if (next == kNoRow) break;
      *link = next;
    } else if (!needs_score_ || tables.CalcScore(left, row) == score) {
      return row;
    } else {
      link = &next;
    }
  }
  return limit;
}

}  // namespace zentavo::optimise_internal
