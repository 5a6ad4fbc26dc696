#include "zentavo/genlib/allocation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "zentavo/framework/memory_data_set.h"
#include "zentavo/genlib/carried_shares.h"

namespace zentavo {
namespace {

using Numbers = std::vector<double>;

TEST(ZentavoEpimerismos, AllocatesOverArrays) {
  const struct {
    Numbers weights, before;
    double amount;
    std::int16_t decimals;
    Numbers after;
  } rows[] = {
      {{1, 1, 1}, {0, 0, 0}, 100, 2, {33.33, 33.34, 33.33}},
      {{1, 0, 1}, {0, 0, 0}, 1, 0, {1, 0, 0}},
      {{0, 0}, {7, 8}, 100, 2, {7, 8}},
      {{1, -1}, {7, 8}, 100, 2, {7, 8}},
      {{1, 1}, {10, 20}, 100, 2, {60, 70}},
      // Goes out as 0.06 and 0.07; the rest, -0.005, rounds to -0.01 on the larger.
      {{1, 1}, {0, 0}, 0.125, 2, {0.06, 0.06}},
      // What was there before counts when the larger is chosen.
      {{1, 1}, {5, 0}, 0.125, 2, {5.05, 0.07}},
      {{1, 1}, {0, 0}, 125, -1, {60, 60}},
      {{1, 1, 1}, {0, 0, 0}, -100, 2, {-33.33, -33.34, -33.33}},
  };
  for (const auto& row : rows) {
    Numbers shares = row.before;
    ZentavoEpimerismos(row.weights, shares, row.amount, row.decimals);
    for (std::size_t i = 0; i < shares.size(); ++i) {
      EXPECT_DOUBLE_EQ(shares[i], row.after[i]) << row.amount << " " << i;
    }
  }
}

TEST(ZentavoEpimerismos, AddsUpToTheAmount) {
  std::mt19937_64 random(17);  // NOLINT(bugprone-random-generator-seed): the same cases each time
  for (int run = 0; run < 2000; ++run) {
    const auto decimals = static_cast<std::int16_t>(random() % 5);
    const double unit = std::pow(10, decimals);
    const auto hundredths = static_cast<std::int64_t>(random() % 1'000'000'000'000);
    const double amount = static_cast<double>(run % 3 == 0 ? -hundredths : hundredths) / unit;
    Numbers weights(static_cast<std::size_t>(random() % 40 + 1));
    for (double& weight : weights) weight = static_cast<double>(random() % 10000) / 8;
    weights.front() += 1;
    Numbers shares(weights.size());
    ZentavoEpimerismos(weights, shares, amount, decimals);
    long long sum = 0;
    for (std::size_t i = 0; i < shares.size(); ++i) {
      sum += std::llround(shares[i] * unit);
      if (weights[i] == 0) {
        EXPECT_EQ(shares[i], 0);
      }
    }
    EXPECT_EQ(sum, std::llround(amount * unit)) << "run " << run;
  }
}

TEST(ZentavoEpimerismos, SurvivesAmountsThatAreNone) {
  for (const double amount : {double{NAN}, double{INFINITY}, 1e308}) {
    Numbers shares(3);
    ZentavoEpimerismos(Numbers{1, 2, 3}, shares, amount, 2);
    EXPECT_EQ(std::isfinite(shares[0]), amount == 1e308);
    ZentavoEpimerismos(Numbers{1, amount, 3}, shares, 10, -32768);
  }
}

TEST(ZentavoEpimerismos, RefusesTooFewShares) {
  Numbers shares(1);
  EXPECT_THROW(ZentavoEpimerismos(Numbers{1, 2}, shares, 1, 2), ERangeError);
  EXPECT_EQ(shares, Numbers{0});
}

// Records with a weight and a share.
class Lines {
 public:
  Lines(const Numbers& weights, const Numbers& shares) {
    data.Open();
    for (std::size_t i = 0; i < weights.size(); ++i) {
      data.Append();
      weight.SetAsFloat(weights[i]);
      share.SetAsFloat(shares[i]);
      data.Post();
    }
  }
  Numbers Shares() {
    Numbers all;
    for (data.First(); !data.Eof(); data.Next()) all.push_back(share.AsFloat());
    return all;
  }
  TMemoryDataSet data{u"LINES"};
  TField& weight = data.AddField(u"WEIGHT", TFieldType::ftFloat);
  TField& share = data.AddField(u"SHARE", TFieldType::ftFloat);
};

TEST(ZentavoEpimerismos, AllocatesOverDataSets) {
  Lines source({1, 1, 1}, {0, 0, 0});
  Lines target({0, 0, 0, 0}, {1, 0, 0, 5});
  ZentavoEpimerismos(source.data, source.weight, target.data, target.share, 100, 2);
  EXPECT_TRUE(source.data.Eof());
  EXPECT_EQ(target.Shares(), (Numbers{34.33, 33.34, 33.33, 5}));
}

TEST(ZentavoEpimerismos, AddsTheRestOfDataSetsUnrounded) {
  Lines lines({1, 1, 0}, {0, 0, 0});
  ZentavoEpimerismos(lines.data, lines.weight, lines.data, lines.share, 0.125, 2);
  const Numbers shares = lines.Shares();
  EXPECT_DOUBLE_EQ(shares[0], 0.06);
  EXPECT_DOUBLE_EQ(shares[1], 0.065);
  EXPECT_EQ(shares[2], 0);
}

TEST(LargestShare, ComparesWithTheSignedValue) {
  LargestShare largest;
  EXPECT_TRUE(largest.IsLarger(5));
  EXPECT_FALSE(largest.IsLarger(-5));
  EXPECT_TRUE(largest.IsLarger(-6));
  EXPECT_TRUE(largest.IsLarger(1));  // behind a negative one any other is larger
  EXPECT_FALSE(largest.IsLarger(1));
}

}  // namespace
}  // namespace zentavo
