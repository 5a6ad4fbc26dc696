#include "zentavo/optimise/scoring_algorithm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>

#include "support/error_of.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/framework/variant_operators.h"
#include "zentavo/optimise/random_stream.h"

namespace zentavo {
namespace {

using Table = std::vector<TScoreRow>;
using Weights = std::vector<std::int32_t>;

// "0-2:5 1-0:3" for left 0 with right 2 at 5, then left 1 with right 0 at 3.
std::string Text(const TScoringAlgorithm::Matches& matches) {
  std::string text;
  for (std::size_t k = 0; k < matches[0].size(); ++k) {
    if (k > 0) text += ' ';
    text += std::to_string(matches[0][k]) + '-' + std::to_string(matches[1][k]) + ':' +
            std::to_string(matches[2][k]);
  }
  return text;
}

struct Case {
  const char* name;
  Table left, right;
  Weights weights;
  double tolerance;
  const char* matches;
};

const Variant kNull = Variant::Null();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Case kCases[] = {
    {"the highest score first", {{1, 2}, {1, 9}}, {{1, 9}, {1, 2}}, {1, 2}, 0, "0-1:3 1-0:3"},
    {"no left rows", {}, {{1}}, {1}, 0, ""},
    {"no right rows: row 0 is taken once", {{1}, {1}}, {}, {1}, 0, "0-0:0"},
    {"no weights", {{1}, {2}}, {{2}, {1}, {3}}, {}, 0, "0-0:0 1-1:0"},
    {"empty cells", {{kNull, u""}, {{}, 5}}, {{7, 7}, {kNull, u""}}, {1, 1}, 0, "0-0:0 1-1:0"},
    {"a tie goes to the lower right row", {{1, 1}}, {{1, 2}, {1, 3}}, {2, 5}, 0, "0-0:2"},
    {"equal targets", {{1, 1}}, {{1, 2}, {2, 1}, {3, 3}}, {1, 1}, 0, "0-0:1 0-1:1"},
    {"then a lower one", {{1, 1, 1}}, {{1, 2, 2}, {2, 2, 1}}, {3, 3, 2}, 0, "0-0:3 0-1:2"},
    {"negative targets match nothing", {{1}}, {{1}, {2}}, {-4}, 0, "0-0:0"},
    {"a weight of 0 doubles the targets", {{1}}, {{2}, {1}, {1}}, {0}, 0, "0-0:0 0-1:0"},
    {"within the tolerance", {{1.005}, {2}}, {{1.01}, {3}}, {1}, 0.01, "0-0:1 1-1:0"},
    {"not within", {{1.005}}, {{1.02}, {1.0}}, {1}, 0.01, "0-1:1"},
    {"integers have none", {{1}}, {{2}, {1}}, {1}, 5, "0-1:1"},
    {"an integer beside a double has none", {{1}}, {{1.001}, {1.0}}, {1}, 0.01, "0-1:1"},
    {"no tolerance below 0", {{1.0}}, {{1.001}, {1.0}}, {1}, -1, "0-1:1"},
    {"currencies have one", {{Variant::CurrencyUnits(10000)}}, {{9.0}, {1.01}}, {1}, 0.1, "0-1:1"},
    {"NaN is within every tolerance", {{kNaN}}, {{3}, {1.5}}, {1}, 0.1, "0-1:1"},
    {"NaN equals nothing", {{kNaN}}, {{3.0}, {kNaN}}, {1}, 0, "0-0:0"},
    {"text reads as a number", {{u"12"}}, {{u"12.0"}, {12}}, {1}, 0, "0-1:1"},
    {"text beside text does not", {{u"12"}}, {{u"12.0"}, {u"12"}}, {1}, 0, "0-1:1"},
    {"not comparable", {{u"abc"}, {Variant::Array{1}}}, {{true}, {7}}, {1}, 0, "0-0:0 1-1:0"},
    {"bits are no values", {{1.5}}, {{0x3FF8000000000000}, {1.5}}, {1}, 0, "0-1:1"},
    {"short right rows are empty there", {{1, 2}}, {{}, {1}}, {1, 2}, 0, "0-1:1"},
    {"short left rows too", {{1, 2}, {1}}, {{1, 2}, {1, 2}}, {1, 2}, 0, "0-0:3 1-1:1"},
    {"the first left row counts", {{1}, {5, 6}}, {{5, 6}, {1, 0}}, {1, 2}, 0, "0-1:1 1-0:1"},
    {"scores wrap", {{1, 1}}, {{1, 1}, {1, 2}}, {kMost, kMost}, 0, "0-1:2147483647 0-0:0"},
};

TEST(TScoringAlgorithm, MatchesAsItsContractSays) {
  for (const Case& one : kCases) {
    TScoringAlgorithm scoring;
    EXPECT_EQ(Text(scoring.Execute(one.left, one.right, one.weights, one.tolerance)), one.matches)
        << one.name;
  }
}

TEST(TScoringAlgorithm, GoesThroughTheTargetsOfEarlierRunsToo) {
  const Table rows = {{1}, {1}, {2}};
  TScoringAlgorithm scoring;
  for (const char* matches : {"0-0:4", "0-0:4 0-1:4", "0-0:4 0-1:4 0-2:0"}) {
    EXPECT_EQ(Text(scoring.Execute(std::span(rows).first(1), rows, Weights{4}, 0)), matches);
  }
}

class ManyTargets : public TScoringAlgorithm {
 public:
  explicit ManyTargets(std::size_t count) { FScores.assign(count, 0); }
};

TEST(TScoringAlgorithm, RefusesTooManyColumnsAndTargets) {
  const auto refusal = [](TScoringAlgorithm&& scoring, std::size_t columns) {
    const Table rows = {TScoreRow(columns, 1)};
    return testing::ErrorOf<EZentavoError>(
        [&] { scoring.Execute(rows, rows, Weights(columns, 1), 0); });
  };
  EXPECT_EQ(refusal({}, 25), "Cannot match by 25 columns; the most is 24");
  EXPECT_EQ(refusal(ManyTargets(TScoringAlgorithm::kMaxTargets - 1), 1),
            "Too many target scores: 33554433; the most is 33554432");
  // The columns of the first left row count, and 24 are not too many.
  const Table narrow = {TScoreRow(1, 1)};
  EXPECT_EQ(Text(TScoringAlgorithm().Execute(narrow, narrow, Weights(25, 1), 0)), "0-0:1");
  const Table wide = {TScoreRow(24, 1), TScoreRow(24, 2)};
  EXPECT_EQ(Text(TScoringAlgorithm().Execute(wide, wide, Weights(24, 2), 0)), "0-0:48 1-1:48");
}

// More values than the tables of codes begin with, of each sort, and in several blocks.
TEST(TScoringAlgorithm, PairsEachOfManyRows) {
  constexpr std::int32_t kRows = 20000;
  Table left;
  std::vector<std::int32_t> numbers;
  for (std::int32_t i = 0; i < kRows; ++i) {
    const String number = FromUtf8(std::to_string(i));
    left.push_back({i, i * 0.25, Variant::Concatenated(u"a long text, ", number), number,
                    Variant::Date(i + 0.5)});
    numbers.push_back(i);
  }
  const Table right(left.rbegin(), left.rend());
  for (const double tolerance : {0.0, 0.01}) {
    const auto matches =
        TScoringAlgorithm().Execute(left, right, Weights{1, 2, 4, 8, 16}, tolerance);
    ASSERT_EQ(matches[0], numbers);
    EXPECT_TRUE(std::equal(numbers.rbegin(), numbers.rend(), matches[1].begin()));
    EXPECT_EQ(matches[2], std::vector<std::int32_t>(kRows, 31));
  }
}

// By indexes and by comparing all pairs.
TEST(TScoringAlgorithm, TellsHowFarItIs) {
  for (const std::size_t columns : {1U, 12U}) {
    Table rows;
    for (std::int32_t i = 0; i < 600; ++i) rows.emplace_back(columns, Variant(i));
    std::vector<std::int64_t> looks = {0};
    TScoringAlgorithm scoring;
    scoring.SetOnProgress([&](std::int64_t now) { looks.push_back(now); });
    scoring.Execute(rows, rows, Weights(columns, 1), 0);
    EXPECT_LT(looks.at(1), 300);  // when the first table is not read yet
    EXPECT_EQ(std::adjacent_find(looks.begin(), looks.end(), std::greater_equal()), looks.end());
    EXPECT_GT(looks.back(), 1200 + 300);  // 1,200 when both are read
  }
}

// Random tables, beside the plain way
// ---------------------------------------------------------------

struct Input {
  Table left, right;
  Weights weights;
  double tolerance = 0;
};

// The algorithm as it is told: every target visits every left row, and every right row for each
// left row without a cached score. The model that the library's is compared with.
class PlainScoring {
 public:
  TScoringAlgorithm::Matches Execute(const Input& input) {
    in_ = &input;
    columns_ = input.weights.size();
    if (!input.left.empty()) columns_ = std::min(columns_, input.left[0].size());
    GetScores(0, 0);
    std::sort(scores_.begin(), scores_.end(), std::greater());
    cache_.assign(input.left.size(), {});
    matched_.clear();
    matches_ = {};
    for (const std::int32_t score : scores_) RunScoreCalculation(score);
    return matches_;
  }

 private:
  struct ScoreRec {
    std::int32_t right_index = 0;
    std::int32_t score = 0;
  };

  void GetScores(std::size_t index, std::int32_t sum) {
    if (index == columns_) return scores_.push_back(sum);
    GetScores(index + 1, sum + in_->weights[index]);
    GetScores(index + 1, sum);
  }

  void RunScoreCalculation(std::int32_t score) {
    for (std::size_t i = 0; i < cache_.size(); ++i) {
      std::int32_t right = cache_[i].right_index;
      bool found = CheckCachedScore(cache_[i], score);
      for (std::size_t j = 0; !found && j < in_->right.size(); ++j) {
        right = static_cast<std::int32_t>(j);
        if (matched_.contains(right)) continue;
        const std::int32_t pair_score = CalcScore(in_->left[i], in_->right[j]);
        if (pair_score > cache_[i].score) cache_[i] = {right, pair_score};
        found = cache_[i].score == score;
      }
      if (found) AddResult(static_cast<std::int32_t>(i), right, score);
    }
  }

  bool CheckCachedScore(ScoreRec& cached, std::int32_t score) const {
    if (cached.score != score) return false;
    if (!matched_.contains(cached.right_index)) return true;
    cached.score = 0;
    return false;
  }

  void AddResult(std::int32_t left, std::int32_t right, std::int32_t score) {
    matches_[0].push_back(left);
    matches_[1].push_back(right);
    matches_[2].push_back(score);
    matched_.insert(right);
  }

  std::int32_t CalcScore(const TScoreRow& left, const TScoreRow& right) const {
    std::int32_t score = 0;
    for (std::size_t c = 0; c < std::min(columns_, left.size()); ++c) {
      const Variant& l = left[c];
      const Variant r = c < right.size() ? right[c] : Variant();
      const bool empty = l.IsNull() || l.IsEmpty() || l.IsEmptyText();
      if (!empty && (AreEqual(l, r) || AreNear(l, r))) score += in_->weights[c];
    }
    return score;
  }

  static bool AreEqual(const Variant& left, const Variant& right) {
    try {
      return left == right;
    } catch (const Exception&) {
      return false;
    }
  }

  bool AreNear(const Variant& left, const Variant& right) const {
    for (const VariantKind kind : {left.Kind(), right.Kind()}) {
      if (kind < VariantKind::kSingle || kind > VariantKind::kCurrency) return false;
    }
    return in_->tolerance > 0 && !(std::abs(VarToDouble(left - right)) > in_->tolerance);
  }

  const Input* in_ = nullptr;
  std::size_t columns_ = 0;
  std::vector<std::int32_t> scores_;  // of earlier runs, too
  std::vector<ScoreRec> cache_;
  std::set<std::int32_t> matched_;
  TScoringAlgorithm::Matches matches_;
};

// Values of one sort or of several, few of each, so that many are equal or near.
class RandomTables {
 public:
  explicit RandomTables(std::uint64_t seed) : random_(seed) {}

  Input Next(std::uint32_t most_rows, std::uint32_t most_columns) {
    std::vector<std::uint32_t> sorts(random_.Below(most_columns + 1));
    Input input;
    const std::uint32_t style = random_.Below(4);
    for (std::uint32_t& sort : sorts) {
      sort = random_.Below(kSorts);
      input.weights.push_back(Weight(style));
    }
    variety_ = 1 + random_.Below(6);
    input.left = Rows(random_.Below(most_rows + 1), sorts);
    input.right = Rows(random_.Below(most_rows + 1), sorts);
    if (random_.Below(2) == 0) input.tolerance = random_.Fraction() * 2;
    return input;
  }

 private:
  static constexpr std::uint32_t kSorts = 9;

  std::int32_t Weight(std::uint32_t style) {
    if (style == 0) return 1;
    if (style == 1) return static_cast<std::int32_t>(random_.Below(9)) - 3;
    if (style == 2) return 1 << random_.Below(5);
    return static_cast<std::int32_t>(random_.Below(3));
  }

  Table Rows(std::uint32_t count, const std::vector<std::uint32_t>& sorts) {
    Table rows(count);
    for (TScoreRow& row : rows) {
      for (const std::uint32_t sort : sorts) row.push_back(Cell(sort));
      if (random_.Below(20) == 0 && !row.empty()) row.pop_back();
    }
    return rows;
  }

  Variant Cell(std::uint32_t sort) {
    const auto value = static_cast<std::int32_t>(random_.Below(variety_));
    const auto digit = static_cast<char16_t>(u'0' + value);
    if (random_.Below(8) == 0) return value == 0 ? Variant() : value == 1 ? kNull : Variant(u"");
    if (sort == 7) sort = random_.Below(kSorts + 2);  // mixed
    switch (sort) {
      case 0: return value;
      case 1: return value * 0.5;
      case 2: return random_.Below(2) == 0 ? Variant(value) : Variant(value * 0.5);
      case 3: return Variant(String(u"a long text, ") + digit);
      case 4: return Variant::CurrencyUnits(std::int64_t{value} * 7000);
      case 5: return value % 2 == 0;
      case 6: return Variant::Date(value * 0.25);
      case 7: return Variant(String(1, digit));
      case 8: return random_.Below(2) == 0 ? Variant(value) : Variant(String{u'x', digit});
      case 9: return kNaN;
      default: return Variant(Variant::Array{value});
    }
  }

  RandomStream random_;
  std::uint32_t variety_ = 1;
};

// Small tables are compared pair by pair; in larger ones the values are looked up.
TEST(TScoringAlgorithm, EqualsThePlainWay) {
  for (std::uint64_t seed = 1; seed <= 1560; ++seed) {
    RandomTables tables(seed);
    TScoringAlgorithm scoring;
    PlainScoring plain;
    for (int run = 0; run < 2; ++run) {
      const Input one = seed <= 1500 ? tables.Next(12, 5) : tables.Next(120, 4);
      ASSERT_EQ(scoring.Execute(one.left, one.right, one.weights, one.tolerance),
                plain.Execute(one))
          << "seed " << seed << ", run " << run;
    }
  }
}

}  // namespace
}  // namespace zentavo
