// The matching itself, over tables in their coded form.
//
// The targets are gone through from the highest down. At each of them, every left row that is not
// done takes the first unused right row that scores it; a row that is done has a match at the last
// of equal targets. A row that is not done never has an unused right row that scores more than the
// target, because that score was a target before. So a row that agrees on columns whose weights sum
// up to the target scores it (negative weights apart), and the right rows are looked up by their
// codes in those columns. Where there are too many such sets of columns for the number of rows, all
// pairs are compared instead.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "zentavo/optimise/look_counter.h"
#include "zentavo/optimise/match_tables.h"
#include "zentavo/optimise/subset_index.h"

namespace zentavo::optimise_internal {

class Matcher {
 public:
  using Matches = std::array<std::vector<std::int32_t>, 3>;

  // `targets` are ascending and hold the score of every pair. All three must outlive the matcher.
  // Counts each look at a left row.
  Matcher(const MatchTables& tables, std::span<const std::int32_t> targets, LookCounter& looks);
  Matches Run();

 private:
  // A set of columns and the sum of its weights.
  struct Subset {
    std::int32_t score;
    ColumnSet columns;
  };
  // A left row and its best unused right row.
  struct Candidate {
    std::int32_t score;
    RowIndex left;
    RowIndex right;
  };

  void ListSubsets();
  bool ScanIsCheaper(std::size_t subsets) const;
  void RunSubsets();
  bool RunEqualSubsets(std::span<const Subset> subsets);
  bool BuildIndexes(std::span<const Subset> subsets);
  void MatchEach(std::span<const RowIndex> lefts, std::int32_t score);
  void MatchBlock(std::span<const RowIndex> lefts, std::int32_t score);
  bool CanAgree(const SubsetIndex& index, RowIndex left) const;
  RowIndex FirstOf(RowIndex left, const std::size_t* places, std::int32_t score);
  void RunScan();
  void RunScanAt(std::vector<Candidate>& queue, std::int32_t score);
  static bool IsBehind(const Candidate& a, const Candidate& b);
  static void Enqueue(std::vector<Candidate>& queue, const Candidate& candidate);
  Candidate BestOf(RowIndex left);
  void RunZero();
  std::size_t TimesOf(std::int32_t score) const;
  void Match(RowIndex left, RowIndex right, std::int32_t score);
  void Finish(std::span<const RowIndex> lefts);
  void DropUsed();

  const MatchTables& tables_;
  std::span<const std::int32_t> targets_;
  LookCounter& looks_;
  ColumnSet columns_ = 0;           // on which any rows may agree
  std::vector<Subset> subsets_;     // of a score above 0, the highest first
  std::vector<RowIndex> lefts_;     // not done, and able to agree on some column; ascending
  std::vector<RowIndex> rights_;    // not used at the last look; ascending
  std::vector<std::uint8_t> done_;  // by left row
  UsedRows used_;
  std::vector<SubsetIndex> indexes_;
  std::size_t index_count_ = 0;
  std::vector<std::size_t> places_;  // in the indexes, for a block of left rows
  std::vector<RowIndex> matched_;    // left rows, in one pass
  std::vector<RowIndex> again_;      // the same in the next
  Matches matches_;
};

}  // namespace zentavo::optimise_internal
