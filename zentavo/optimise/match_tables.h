// Two tables in the form in which the matcher compares them: small numbers in the place of values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "zentavo/optimise/cell_keys.h"
#include "zentavo/optimise/look_counter.h"
#include "zentavo/optimise/value_codes.h"

namespace zentavo::optimise_internal {

using RowIndex = std::int32_t;
using ColumnSet = std::uint32_t;  // bit c: column c of MatchTables::Columns()

enum class Comparison : std::uint8_t {
  kEqualCodes,  // cells agree when their codes are equal
  kNearCodes,   // agreeing cells have equal codes, or the left one's second code is the right one's
  kCells,       // only the values tell
};

struct MatchColumn {
  std::size_t place;  // in the rows
  std::int32_t weight;
  Comparison comparison;
  std::size_t second_code;  // of kNearCodes: where the left row has it
  bool has_texts;           // in some row
};

// Refers to the rows, which must outlive it. Columns of weight 0 are left out.
class MatchTables {
 public:
  // Counts a look at each row.
  MatchTables(Rows left, Rows right, std::span<const std::int32_t> weights, double tolerance,
              LookCounter& looks);

  std::span<const MatchColumn> Columns() const { return columns_; }
  RowIndex LeftCount() const { return static_cast<RowIndex>(left_.size()); }
  RowIndex RightCount() const { return static_cast<RowIndex>(right_.size()); }
  // The columns on which the row may agree with some row of the other table.
  ColumnSet LeftColumns(RowIndex left) const { return left_sets_[At(left)]; }
  ColumnSet RightColumns(RowIndex right) const { return right_sets_[At(right)]; }
  const Code* LeftCodes(RowIndex left) const { return &left_codes_[At(left) * left_width_]; }
  const Code* RightCodes(RowIndex right) const { return &right_codes_[At(right) * right_width_]; }
  std::int32_t CalcScore(RowIndex left, RowIndex right) const;

 private:
  static std::size_t At(RowIndex row) { return static_cast<std::size_t>(row); }
  Comparison ComparisonOf(std::size_t place, unsigned left_kinds, unsigned right_kinds) const;
  void AddColumns(std::span<const std::int32_t> weights);
  std::vector<CodePlace> RightPlaces() const;
  std::vector<CodePlace> LeftPlaces() const;
  // The values of the right columns that left rows have, by code.
  using MetCodes = std::vector<std::vector<bool>>;

  void Encode(LookCounter& looks);
  void EncodeRight(std::span<ValueCodes> codes, LookCounter& looks);
  MetCodes EncodeLeft(std::span<const ValueCodes> codes, LookCounter& looks);
  void MarkCells(std::size_t column);
  void MarkMet(const MetCodes& met);
  bool Agree(std::size_t column, RowIndex left, RowIndex right) const;

  Rows left_;
  Rows right_;
  double tolerance_;
  std::vector<MatchColumn> columns_;
  bool all_by_code_ = true;
  std::size_t left_width_ = 0;  // codes in a row
  std::size_t right_width_ = 0;
  std::vector<Code> left_codes_;
  std::vector<Code> right_codes_;
  std::vector<ColumnSet> left_sets_;
  std::vector<ColumnSet> right_sets_;
};

}  // namespace zentavo::optimise_internal
