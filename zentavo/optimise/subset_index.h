// Finds the unused right rows that agree with a left row on given columns.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "zentavo/optimise/match_tables.h"

namespace zentavo::optimise_internal {

// Which right rows are matched already.
using UsedRows = std::vector<std::uint8_t>;

// An index of right rows by their codes in some columns. May be built again for others.
class SubsetIndex {
 public:
  // Takes in, of `rows` (ascending), those that can agree on all of `columns`. Returns whether
  // there are any.
  bool Build(const MatchTables& tables, ColumnSet columns, std::span<const RowIndex> rows);
  ColumnSet Columns() const { return columns_; }

  // Where the search for a left row begins. Asks the memory for that place and, in a second call,
  // for the first row found there.
  std::size_t PrefetchPlace(const MatchTables& tables, RowIndex left) const {
    const std::size_t place = PlaceOf(tables.LeftCodes(left));
    Prefetch(&slots_[place]);
    return place;
  }
  void PrefetchFirst(const MatchTables& tables, std::size_t place) const;

  // The first row before `limit` that is not used and, with `score`, scores exactly that beside
  // the left row; `limit` when there is none. The left row can agree on all columns.
  RowIndex First(const MatchTables& tables, const UsedRows& used, RowIndex left, std::size_t place,
                 RowIndex limit, std::int32_t score);

  // Roughly, for `rows` rows.
  static std::size_t Bytes(std::size_t rows) {
    return rows * (kSlotsPerRow + 1) * sizeof(RowIndex);
  }

 private:
  static constexpr std::size_t kSlotsPerRow = 3;  // between 2 and 4

  void ChooseKey(const MatchTables& tables);
  std::size_t PlaceOf(const Code* codes) const;
  RowIndex& SlotOf(const MatchTables& tables, const Code* codes);
  RowIndex& SlotFrom(std::size_t place, const MatchTables& tables, const Code* codes);
  bool SameKey(const Code* a, const Code* b) const;
  RowIndex FirstInList(const MatchTables& tables, const UsedRows& used, RowIndex left,
                       RowIndex limit, std::int32_t score, RowIndex& head);

  ColumnSet columns_ = 0;
  std::vector<std::uint8_t> key_;   // the columns that are looked up by code
  std::vector<std::uint8_t> near_;  // the places in `key_` that have a second code on the left
  bool needs_score_ = false;        // rows of a list may agree on more or on less
  std::vector<RowIndex> slots_;     // first rows of lists; rows of one list have the same key
  std::vector<RowIndex> next_;      // by row
  std::vector<Code> wanted_;        // scratch: codes of a row
};

}  // namespace zentavo::optimise_internal
