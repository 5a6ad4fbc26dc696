// Pairs the rows of two tables by the weighted agreement of their columns.
//
// A column adds its weight to a pair's score when the left value is not empty (Empty, Null, "") and
// the two values compare equal as variants do, or, with a tolerance, are both singles, doubles or
// currencies that differ by at most it (NaN passes). Values that cannot be compared are not equal.
//
// Matches are made greedily. The targets are the sums of all subsets of the weights, equal sums
// each in turn, from the highest down; for each target every left row, in order, takes the first
// unused right row that scores it. What callers rely on beyond that:
//
//   - A left row that found its match at the last of equal targets is done; one that found it at an
//     earlier of them may find a further match at the next.
//   - At the target 0 every left row that is not done takes the first unused right row, even one
//     that scores less; negative targets match nothing.
//   - Without right rows the first left row matches row 0 at the target 0.
//
// Time grows with the rows, not with their product, for columns whose values hash: numbers and
// dates, currencies, booleans, texts, each alone, and numbers beside texts that read as none;
// numbers within a tolerance, too. Other columns are compared pair by pair among the rows that
// agree on the rest. It also grows with the number of targets, up to the time of comparing all
// pairs.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "zentavo/framework/variant.h"

namespace zentavo {

using TScoreRow = std::vector<Variant>;

// Used by one thread at a time.
class ZENTAVO_API TScoringAlgorithm {
 public:
  static constexpr std::int32_t kMaxColumns = 24;
  static constexpr std::size_t kMaxTargets = std::size_t{1} << 25;

  // The matches in the order in which they are made.
  using Matches = std::array<std::vector<std::int32_t>, 3>;  // left rows, right rows, scores

  // Called now and then during a run with how often a row has been looked at so far: the rows of
  // both tables when they are read, then the left ones, which may be more than once for each. Empty
  // for none.
  using TProgressEvent = std::function<void(std::int64_t Looks)>;
  void SetOnProgress(TProgressEvent OnProgress) { on_progress_ = std::move(OnProgress); }

  // Compares as many columns as there are weights, but no more than the first left row has; what
  // other rows lack counts as empty. A tolerance of 0 or less is none. Scores wrap at 32 bits.
  //
  // A further run on the same object goes through the targets of the runs before as well: callers
  // rely on this. Raises EZentavoError "Cannot match by %d columns; the most is 24" and "Too many
  // target scores: %d; the most is 33554432", and leaves the object as it was.
  Matches Execute(std::span<const TScoreRow> ALeft, std::span<const TScoreRow> ARight,
                  std::span<const std::int32_t> AWeights, double ADiff);

 protected:
  std::int32_t CalcColSize() const;
  // Appends the sum of `Sum` and every subset of Weights[Index..Last] to FScores.
  void GetScores(std::span<const std::int32_t> Weights, std::int32_t Index, std::int32_t Sum,
                 std::int32_t Last);

  std::vector<std::int32_t> FWeights;
  std::vector<std::int32_t> FScores;  // the targets, ascending
  std::span<const TScoreRow> FLeft;   // the tables during a run
  std::span<const TScoreRow> FRight;
  std::int32_t FColSize = -1;  // index of the last column compared
  double FDiff = 0;

 private:
  void CheckLimits(std::int32_t columns) const;

  TProgressEvent on_progress_;
};

}  // namespace zentavo
