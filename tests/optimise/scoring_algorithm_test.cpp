#include "zentavo/optimise/scoring_algorithm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

#include "optimise/plain_scoring.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/optimise/random_stream.h"

namespace zentavo {
namespace {

using Table = std::vector<TScoreRow>;
using Weights = std::vector<std::int32_t>;

// "0-2:5 1-0:3" for left 0 with right 2 at 5, then left 1 with right 0 at 3.
std::string Text(const TScoringAlgorithm::Matches& matches) {
  std::string text;
  for (std::size_t k = 0; k < matches[0].size(); ++k) {
    text += (k == 0 ? "" : " ") + std::to_string(matches[0][k]) + "-" +
            std::to_string(matches[1][k]) + ":" + std::to_string(matches[2][k]);
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
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Case kCases[] = {
    {"the highest score first", {{1, 2}, {1, 9}}, {{1, 9}, {1, 2}}, {1, 2}, 0, "0-1:3 1-0:3"},
    {"no left rows", {}, {{1}}, {1}, 0, ""},
    {"no right rows: row 0 is taken once", {{1}, {1}}, {}, {1}, 0, "0-0:0"},
    {"no weights", {{1}, {2}}, {{2}, {1}, {3}}, {}, 0, "0-0:0 1-1:0"},
    {"empty left values",
     {{kNull, u""}, {Variant(), 5}},
     {{7, 7}, {kNull, u""}},
     {1, 1},
     0,
     "0-0:0 1-1:0"},
    {"a tie goes to the lower right row", {{1, 1}}, {{1, 2}, {1, 3}}, {2, 5}, 0, "0-0:2"},
    {"matched twice under equal weights",
     {{1, 1}},
     {{1, 2}, {2, 1}, {3, 3}},
     {1, 1},
     0,
     "0-0:1 0-1:1"},
    {"spent and then matched lower",
     {{1, 1, 1}},
     {{1, 2, 2}, {2, 2, 1}, {3, 3, 3}},
     {3, 3, 2},
     0,
     "0-0:3 0-1:2"},
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
    {"what cannot be compared is not equal",
     {{u"abc"}, {Variant(Variant::Array{1})}},
     {{true}, {7}},
     {1},
     0,
     "0-0:0 1-1:0"},
    {"short right rows are empty there", {{1, 2}}, {{}, {1}}, {1, 2}, 0, "0-1:1"},
    {"short left rows too", {{1, 2}, {1}}, {{1, 2}, {1, 2}}, {1, 2}, 0, "0-0:3 1-1:1"},
    {"the first left row sets the columns",
     {{1}, {5, 6}},
     {{5, 6}, {1, 0}},
     {1, 2},
     0,
     "0-1:1 1-0:1"},
    {"scores wrap",
     {{1, 1}},
     {{1, 1}, {1, 2}},
     {0x7FFFFFFF, 0x7FFFFFFF},
     0,
     "0-1:2147483647 0-0:0"},
};

TEST(TScoringAlgorithm, MatchesAsItsContractSays) {
  for (const Case& one : kCases) {
    TScoringAlgorithm scoring;
    const auto matches = scoring.Execute(one.left, one.right, one.weights, one.tolerance);
    EXPECT_EQ(Text(matches), one.matches) << one.name;
  }
}

TEST(TScoringAlgorithm, GoesThroughTheTargetsOfEarlierRunsToo) {
  const Table left = {{1}};
  const Table right = {{1}, {1}, {2}};
  TScoringAlgorithm scoring;
  EXPECT_EQ(Text(scoring.Execute(left, right, Weights{4}, 0)), "0-0:4");
  EXPECT_EQ(Text(scoring.Execute(left, right, Weights{4}, 0)), "0-0:4 0-1:4");
  EXPECT_EQ(Text(scoring.Execute(left, right, Weights{4}, 0)), "0-0:4 0-1:4 0-2:0");
}

TEST(TScoringAlgorithm, RefusesMoreThan24Columns) {
  const Table rows = {TScoreRow(25, 1)};
  TScoringAlgorithm scoring;
  EXPECT_THROW(
      {
        try {
          scoring.Execute(rows, rows, Weights(25, 1), 0);
        } catch (const EZentavoError& error) {
          EXPECT_EQ(error.Message(), u"Cannot match by 25 columns; the most is 24");
          throw;
        }
      },
      EZentavoError);
  const Table narrow = {TScoreRow(1, 1)};
  EXPECT_EQ(Text(scoring.Execute(narrow, rows, Weights(25, 1), 0)), "0-0:1");
}

TEST(TScoringAlgorithm, MatchesBy24Columns) {
  const Table rows = {TScoreRow(24, 1), TScoreRow(24, 2)};
  EXPECT_EQ(Text(TScoringAlgorithm().Execute(rows, rows, Weights(24, 2), 0)), "0-0:48 1-1:48");
}

class ManyTargets : public TScoringAlgorithm {
 public:
  explicit ManyTargets(std::size_t count) { FScores.assign(count, 0); }
};

TEST(TScoringAlgorithm, RefusesTargetsWithoutEnd) {
  const Table rows = {{1}};
  ManyTargets scoring(TScoringAlgorithm::kMaxTargets - 1);
  try {
    scoring.Execute(rows, rows, Weights{1}, 0);
    ADD_FAILURE() << "not refused";
  } catch (const EZentavoError& error) {
    EXPECT_EQ(error.Message(), u"Too many target scores: 33554433; the most is 33554432");
  }
}

// By indexes and by comparing all pairs.
TEST(TScoringAlgorithm, TellsHowFarItIs) {
  for (const std::int32_t columns : {1, 12}) {
    Table rows;
    for (std::int32_t i = 0; i < 600; ++i) {
      rows.emplace_back(static_cast<std::size_t>(columns), Variant(i));
    }
    std::vector<std::int64_t> looks;
    TScoringAlgorithm scoring;
    scoring.SetOnProgress([&](std::int64_t now) { looks.push_back(now); });
    scoring.Execute(rows, rows, Weights(static_cast<std::size_t>(columns), 1), 0);
    ASSERT_GE(looks.size(), 6U) << columns << " columns";
    EXPECT_LT(looks.front(), 300);  // when the first table is not read yet
    EXPECT_EQ(std::adjacent_find(looks.begin(), looks.end(), std::greater_equal()), looks.end());
    EXPECT_GT(looks.back(), 1200 + 300);  // 1,200 when both are read
  }
}

// Random tables --------------------------------------------------------------------------------

// Values of one sort or of several, few of each, so that many are equal or near.
class RandomTables {
 public:
  explicit RandomTables(std::uint64_t seed) : random_(seed) {}

  struct Input {
    Table left, right;
    Weights weights;
    double tolerance = 0;
  };

  Input Next(std::uint32_t most_rows, std::uint32_t most_columns) {
    const std::uint32_t columns = random_.Below(most_columns + 1);
    std::vector<std::uint32_t> sorts;
    Input input;
    const std::uint32_t style = random_.Below(4);
    for (std::uint32_t c = 0; c < columns; ++c) {
      sorts.push_back(random_.Below(kSorts));
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
    if (random_.Below(8) == 0) return value == 0 ? Variant() : value == 1 ? kNull : Variant(u"");
    if (sort == 7) sort = random_.Below(kSorts + 2);  // mixed
    switch (sort) {
      case 0: return value;
      case 1: return value * 0.5;
      case 2: return random_.Below(2) == 0 ? Variant(value) : Variant(value * 0.5);
      case 3: return Variant(String(u"a long text, ") + static_cast<char16_t>(u'0' + value));
      case 4: return Variant::CurrencyUnits(value * 7000);
      case 5: return value % 2 == 0;
      case 6: return Variant::Date(value * 0.25);
      case 7: return Variant(String(1, static_cast<char16_t>(u'0' + value)));
      case 8:
        return random_.Below(2) == 0 ? Variant(value)
                                     : Variant(String{u'x', static_cast<char16_t>(u'0' + value)});
      case 9: return kNaN;
      default: return Variant(Variant::Array{value});
    }
  }

  RandomStream random_;
  std::uint32_t variety_ = 1;
};

void CompareWithPlain(std::uint64_t first_seed, int inputs, std::uint32_t rows,
                      std::uint32_t columns) {
  for (std::uint64_t seed = first_seed; inputs > 0; ++seed, --inputs) {
    RandomTables tables(seed);
    TScoringAlgorithm scoring;
    testing::PlainScoring plain;
    for (int run = 0; run < 2; ++run) {
      const auto input = tables.Next(rows, columns);
      ASSERT_EQ(Text(scoring.Execute(input.left, input.right, input.weights, input.tolerance)),
                Text(plain.Execute(input.left, input.right, input.weights, input.tolerance)))
          << "seed " << seed << ", run " << run;
    }
  }
}

TEST(TScoringAlgorithm, EqualsThePlainWayOnSmallTables) {
  CompareWithPlain(1, 1500, 12, 5);
}

// Enough rows to look values up instead of comparing all pairs.
TEST(TScoringAlgorithm, EqualsThePlainWayOnLargerTables) {
  CompareWithPlain(100001, 60, 120, 4);
}

}  // namespace
}  // namespace zentavo
