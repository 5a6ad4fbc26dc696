#include "zentavo/optimise/scoring_algorithm.h"

#include <algorithm>

#include "zentavo/foundation/errors.h"
#include "zentavo/optimise/look_counter.h"
#include "zentavo/optimise/match_tables.h"
#include "zentavo/optimise/matcher.h"

namespace zentavo {

namespace {

std::int32_t ColumnsCompared(std::span<const TScoreRow> left, std::size_t weights) {
  const std::size_t columns = left.empty() ? weights : std::min(weights, left.front().size());
  return static_cast<std::int32_t>(columns);
}

}  // namespace

TScoringAlgorithm::Matches TScoringAlgorithm::Execute(std::span<const TScoreRow> ALeft,
                                                      std::span<const TScoreRow> ARight,
                                                      std::span<const std::int32_t> AWeights,
                                                      double ADiff) {
  CheckLimits(ColumnsCompared(ALeft, AWeights.size()));
  FWeights.assign(AWeights.begin(), AWeights.end());
  FLeft = ALeft;
  FRight = ARight;
  FDiff = ADiff;
  FColSize = CalcColSize();
  const auto columns = static_cast<std::size_t>(FColSize) + 1;
  FScores.reserve(FScores.size() + (std::size_t{1} << columns));
  GetScores(FWeights, 0, 0, FColSize);
  std::sort(FScores.begin(), FScores.end());
  optimise_internal::LookCounter looks(on_progress_);
  const optimise_internal::MatchTables tables(FLeft, FRight, std::span(FWeights).first(columns),
                                              FDiff, looks);
  Matches matches = optimise_internal::Matcher(tables, FScores, looks).Run();
  FLeft = FRight = {};
  return matches;
}

void TScoringAlgorithm::CheckLimits(std::int32_t columns) const {
  if (columns > kMaxColumns) {
    ZentavoErrorFmt(u"Cannot match by %d columns; the most is %d", {columns, kMaxColumns});
  }
  const std::size_t targets = FScores.size() + (std::size_t{1} << columns);
  if (targets > kMaxTargets) {
    ZentavoErrorFmt(u"Too many target scores: %d; the most is %d",
                    {static_cast<std::int64_t>(targets), static_cast<std::int64_t>(kMaxTargets)});
  }
}

std::int32_t TScoringAlgorithm::CalcColSize() const {
  return ColumnsCompared(FLeft, FWeights.size()) - 1;
}

void TScoringAlgorithm::GetScores(std::span<const std::int32_t> Weights, std::int32_t Index,
                                  std::int32_t Sum, std::int32_t Last) {
  if (Index > Last) {
    FScores.push_back(Sum);
    return;
  }
  const std::uint32_t with = static_cast<std::uint32_t>(Sum) +
                             static_cast<std::uint32_t>(Weights[static_cast<std::size_t>(Index)]);
  GetScores(Weights, Index + 1, static_cast<std::int32_t>(with), Last);
  GetScores(Weights, Index + 1, Sum, Last);
}

}  // namespace zentavo
