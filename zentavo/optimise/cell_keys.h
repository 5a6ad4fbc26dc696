// The keys of tables' cells, by which codes are given to them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "zentavo/framework/variant.h"
#include "zentavo/optimise/agreement.h"
#include "zentavo/optimise/prefetch.h"
#include "zentavo/optimise/value_codes.h"

namespace zentavo::optimise_internal {

using Row = std::vector<Variant>;
using Rows = std::span<const Row>;

// The cell of a row, null when it is empty or missing.
inline const Variant* CellOf(const Row& row, std::size_t place) {
  if (place >= row.size() || IsEmptyCell(row[place])) return nullptr;
  return &row[place];
}

// Stretches of the number line, so wide that what lies within the tolerance of a number, rounding
// included, is in at most two of them.
class Grid {
 public:
  explicit Grid(double tolerance) : width_(4 * tolerance), reach_(1.25 * tolerance) {}

  bool IsUsable() const;
  // Far from 0 the stretches get lost in rounding.
  bool Holds(double value) const;
  // The numbers of the stretches in which there are the value, and the ends of its tolerance.
  double StretchOf(double value) const;
  double LowerStretch(double value) const { return StretchOf(value - reach_); }
  double UpperStretch(double value) const { return StretchOf(value + reach_); }

 private:
  double width_;
  double reach_;
};

enum class KeySort : std::uint8_t {
  kValue,    // in a column of one sort
  kStretch,  // of a number on the grid
  kLowerStretch,
  kUpperStretch,
};

// Where a row's code goes, and what it is the code of.
struct CodePlace {
  std::size_t cell;    // in the row
  std::size_t column;  // among those compared
  std::size_t code;    // in the row's codes
  KeySort sort;
  bool has_texts;  // in some row
};

// Asks the memory for the first `cells` cells of a row, if there is that row.
inline void PrefetchCells(Rows rows, std::size_t row, std::size_t cells) {
  constexpr std::size_t kCellsAtOnce = 64 / sizeof(Variant);
  if (row >= rows.size()) return;
  cells = std::min(cells, rows[row].size());
  for (std::size_t cell = 0; cell < cells; cell += kCellsAtOnce) PrefetchFar(&rows[row][cell]);
}

struct KeyedRow {
  ValueKey key;
  std::uint32_t row;
};

// Goes through the keys of the cells at some places, row by row, so that the memory of a row is
// visited once; in blocks of rows, so that the memory brings what many of them need at once.
//
//   for (KeyWalk walk(rows, places, codes, grid); walk.Next();) {
//     for (std::size_t place = 0; place < places.size(); ++place) ... walk.Keys(place) ...
//   }
class KeyWalk {
 public:
  // `codes` are those of the columns, in which the caller looks the keys up. All must outlive it.
  KeyWalk(Rows rows, std::span<const CodePlace> places, std::span<const ValueCodes> codes,
          Grid grid);

  // Goes to the next block; false when there is none.
  bool Next();
  std::size_t RowCount() const { return end_ - begin_; }  // of the block
  // The rows of the block that have a key at that place, ascending.
  std::span<const KeyedRow> Keys(std::size_t place) const {
    return {&keyed_[place * block_], counts_[place]};
  }

 private:
  void PrefetchBehind() const;
  void PrefetchTexts(const CodePlace& place) const;
  void PrefetchKept() const;
  void TakeKeys(std::size_t place);
  template <typename SetKey>
  void TakeKeys(std::size_t place, SetKey set_key);

  Rows rows_;
  std::span<const CodePlace> places_;
  std::span<const ValueCodes> codes_;
  Grid grid_;
  std::size_t block_;      // rows
  std::size_t cells_ = 0;  // of a row, up to the last that counts
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::vector<KeyedRow> keyed_;  // a block's rows for each place
  std::vector<std::size_t> counts_;
};

}  // namespace zentavo::optimise_internal
