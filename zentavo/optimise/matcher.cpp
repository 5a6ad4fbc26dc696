#include "zentavo/optimise/matcher.h"

#include <algorithm>
#include <bit>
#include <numeric>
#include <utility>

namespace zentavo::optimise_internal {

namespace {

// The indexes that are needed at once take at most this much for each row of the tables.
constexpr std::size_t kIndexBytesPerRow = 1024;
constexpr std::size_t kBlock = 32;  // rows
// Looking a row up costs about as much as comparing this many pairs by codes.
constexpr double kPairsPerLookup = 2;

std::size_t At(RowIndex row) {
  return static_cast<std::size_t>(row);
}

}  // namespace

Matcher::Matcher(const MatchTables& tables, std::span<const std::int32_t> targets,
                 LookCounter& looks)
    : tables_(tables),
      targets_(targets),
      looks_(looks),
      rights_(At(tables.RightCount())),
      done_(At(tables.LeftCount())),
      used_(At(tables.RightCount())) {
  ColumnSet right_columns = 0;
  for (RowIndex row = 0; row < tables.RightCount(); ++row) {
    right_columns |= tables.RightColumns(row);
  }
  for (RowIndex row = 0; row < tables.LeftCount(); ++row) {
    columns_ |= tables.LeftColumns(row);
    if (tables.LeftColumns(row) != 0) lefts_.push_back(row);
  }
  columns_ &= right_columns;
  std::iota(rights_.begin(), rights_.end(), 0);
  for (auto& column : matches_) column.reserve(std::min(done_.size(), used_.size()));
}

Matcher::Matches Matcher::Run() {
  const int columns = std::popcount(columns_);
  if (ScanIsCheaper((std::size_t{1} << columns) - 1)) {
    RunScan();
  } else {
    ListSubsets();
    RunSubsets();
  }
  RunZero();
  return std::move(matches_);
}

// Every set of the columns, with its score.
void Matcher::ListSubsets() {
  for (ColumnSet set = columns_; set != 0; set = (set - 1) & columns_) {
    std::uint32_t score = 0;
    for (ColumnSet rest = set; rest != 0; rest &= rest - 1) {
      const auto column = static_cast<std::size_t>(std::countr_zero(rest));
      score += static_cast<std::uint32_t>(tables_.Columns()[column].weight);
    }
    const Subset subset{static_cast<std::int32_t>(score), set};
    if (subset.score > 0) subsets_.push_back(subset);
  }
  std::sort(subsets_.begin(), subsets_.end(), [](const Subset& a, const Subset& b) {
    return a.score != b.score ? a.score > b.score : a.columns < b.columns;
  });
}

// Whether comparing all pairs takes less time than going through so many sets of columns.
bool Matcher::ScanIsCheaper(std::size_t subsets) const {
  const auto lefts = static_cast<double>(lefts_.size());
  const auto rights = static_cast<double>(rights_.size());
  return lefts * rights < static_cast<double>(subsets) * (lefts + rights) * kPairsPerLookup;
}

void Matcher::RunSubsets() {
  std::span<const Subset> rest = subsets_;
  while (!rest.empty() && !lefts_.empty() && !rights_.empty()) {
    if (ScanIsCheaper(rest.size())) return RunScan();
    const std::int32_t score = rest.front().score;
    const auto end = std::find_if(rest.begin(), rest.end(),
                                  [&](const Subset& subset) { return subset.score != score; });
    const auto count = static_cast<std::size_t>(end - rest.begin());
    if (!RunEqualSubsets(rest.first(count))) return RunScan();
    rest = rest.subspan(count);
  }
}

// False, with nothing done, when the sets are too many.
bool Matcher::RunEqualSubsets(std::span<const Subset> subsets) {
  if (!BuildIndexes(subsets)) return false;
  if (index_count_ == 0) return true;
  const std::int32_t score = subsets.front().score;
  std::span<const RowIndex> asked = lefts_;
  const std::size_t times = TimesOf(score);
  for (std::size_t time = 0; time < times && !asked.empty(); ++time) {
    again_.clear();
    MatchEach(asked, score);
    matched_.swap(again_);
    asked = matched_;
  }
  Finish(asked);
  DropUsed();
  return true;
}

bool Matcher::BuildIndexes(std::span<const Subset> subsets) {
  const std::size_t rows = At(tables_.LeftCount()) + At(tables_.RightCount());
  index_count_ = 0;
  for (const Subset& subset : subsets) {
    const bool wanted = std::any_of(lefts_.begin(), lefts_.end(), [&](RowIndex left) {
      return (subset.columns & ~tables_.LeftColumns(left)) == 0;
    });
    if (!wanted) continue;
    const std::size_t bytes = (index_count_ + 1) * SubsetIndex::Bytes(rights_.size());
    if (bytes > rows * kIndexBytesPerRow) return false;
    if (index_count_ == indexes_.size()) indexes_.emplace_back();
    if (indexes_[index_count_].Build(tables_, subset.columns, rights_)) ++index_count_;
  }
  return true;
}

// In blocks, so that the memory brings what many rows need at the same time.
void Matcher::MatchEach(std::span<const RowIndex> lefts, std::int32_t score) {
  places_.resize(kBlock * index_count_);
  for (std::size_t begin = 0; begin < lefts.size(); begin += kBlock) {
    const std::size_t end = std::min(begin + kBlock, lefts.size());
    for (std::size_t i = end; i < std::min(end + kBlock, lefts.size()); ++i) {
      Prefetch(tables_.LeftCodes(lefts[i]));
    }
    MatchBlock(lefts.subspan(begin, end - begin), score);
  }
}

void Matcher::MatchBlock(std::span<const RowIndex> lefts, std::int32_t score) {
  const auto for_each_place = [&](auto take) {
    std::size_t* place = places_.data();
    for (const RowIndex left : lefts) {
      for (std::size_t i = 0; i < index_count_; ++i, ++place) {
        if (CanAgree(indexes_[i], left)) take(indexes_[i], left, *place);
      }
    }
  };
  for_each_place([&](const SubsetIndex& index, RowIndex left, std::size_t& place) {
    place = index.PrefetchPlace(tables_, left);
  });
  for_each_place([&](const SubsetIndex& index, RowIndex, std::size_t place) {
    index.PrefetchFirst(tables_, place);
  });
  for (std::size_t i = 0; i < lefts.size(); ++i) {
    const RowIndex right = FirstOf(lefts[i], &places_[i * index_count_], score);
    if (right == tables_.RightCount()) continue;
    Match(lefts[i], right, score);
    again_.push_back(lefts[i]);
  }
}

bool Matcher::CanAgree(const SubsetIndex& index, RowIndex left) const {
  return (index.Columns() & ~tables_.LeftColumns(left)) == 0;
}

// The first unused right row that scores `score`, the number of right rows when there is none.
RowIndex Matcher::FirstOf(RowIndex left, const std::size_t* places, std::int32_t score) {
  looks_.Count(1);
  RowIndex first = tables_.RightCount();
  for (std::size_t i = 0; i < index_count_; ++i) {
    SubsetIndex& index = indexes_[i];
    if (!CanAgree(index, left)) continue;
    first = index.First(tables_, used_, left, places[i], first, score);
  }
  return first;
}

// Goes on from any target: each left row waits with its best right row for the target that it
// scores, and looks for another one when that is used by then.
void Matcher::RunScan() {
  std::vector<Candidate> queue;
  for (const RowIndex left : lefts_) Enqueue(queue, BestOf(left));
  while (!queue.empty()) RunScanAt(queue, queue.front().score);
}

void Matcher::RunScanAt(std::vector<Candidate>& queue, std::int32_t score) {
  matched_.clear();
  while (!queue.empty() && queue.front().score == score) {
    Candidate candidate = queue.front();
    std::pop_heap(queue.begin(), queue.end(), IsBehind);
    queue.pop_back();
    if (used_[At(candidate.right)] != 0) candidate = BestOf(candidate.left);
    if (candidate.score != score) {
      Enqueue(queue, candidate);
      continue;
    }
    Match(candidate.left, candidate.right, score);
    matched_.push_back(candidate.left);
  }
  for (std::size_t time = 1; time < TimesOf(score) && !matched_.empty(); ++time) {
    again_.clear();
    for (const RowIndex left : matched_) {
      const Candidate candidate = BestOf(left);
      if (candidate.score != score) {
        Enqueue(queue, candidate);
        continue;
      }
      Match(left, candidate.right, score);
      again_.push_back(left);
    }
    matched_.swap(again_);
  }
  for (const RowIndex left : matched_) done_[At(left)] = 1;
  DropUsed();
}

// The higher score comes first, and of equal ones the lower left row.
bool Matcher::IsBehind(const Candidate& a, const Candidate& b) {
  return a.score != b.score ? a.score < b.score : a.left > b.left;
}

void Matcher::Enqueue(std::vector<Candidate>& queue, const Candidate& candidate) {
  if (candidate.score <= 0) return;
  queue.push_back(candidate);
  std::push_heap(queue.begin(), queue.end(), IsBehind);
}

Matcher::Candidate Matcher::BestOf(RowIndex left) {
  looks_.Count(1);
  Candidate best{0, left, 0};
  for (const RowIndex right : rights_) {
    if (used_[At(right)] != 0) continue;
    const std::int32_t score = tables_.CalcScore(left, right);
    if (score > best.score) best = {score, left, right};
  }
  return best;
}

// At the target 0 the score no longer matters.
void Matcher::RunZero() {
  DropUsed();
  if (tables_.RightCount() == 0) {
    if (tables_.LeftCount() > 0) Match(0, 0, 0);
    return;
  }
  auto right = rights_.begin();
  for (std::size_t times = TimesOf(0); times > 0 && right != rights_.end(); --times) {
    const auto before = right;
    for (RowIndex left = 0; left < tables_.LeftCount() && right != rights_.end(); ++left) {
      if (done_[At(left)] == 0) Match(left, *right++, 0);
    }
    if (right == before) return;
  }
}

std::size_t Matcher::TimesOf(std::int32_t score) const {
  const auto [first, last] = std::equal_range(targets_.begin(), targets_.end(), score);
  return static_cast<std::size_t>(last - first);
}

void Matcher::Match(RowIndex left, RowIndex right, std::int32_t score) {
  matches_[0].push_back(left);
  matches_[1].push_back(right);
  matches_[2].push_back(score);
  if (right < tables_.RightCount()) used_[At(right)] = 1;
}

void Matcher::Finish(std::span<const RowIndex> lefts) {
  for (const RowIndex left : lefts) done_[At(left)] = 1;
  std::erase_if(lefts_, [&](RowIndex left) { return done_[At(left)] != 0; });
}

void Matcher::DropUsed() {
  std::erase_if(rights_, [&](RowIndex right) { return used_[At(right)] != 0; });
}

}  // namespace zentavo::optimise_internal
