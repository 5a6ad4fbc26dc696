#include "zentavo/optimise/genetic_algorithm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "optimise/count_ones.h"

namespace zentavo {
namespace {

using zentavo::testing::CountOnes;

constexpr TDateTime kNever = 2958465;
constexpr std::int32_t kNoElastic = std::numeric_limits<std::int32_t>::max();

// The operations in the open, and clocks that tests set.
class Search : public TGeneticAlgorithm {
 public:
  using TGeneticAlgorithm::BinToDec;
  using TGeneticAlgorithm::CalculateRates;
  using TGeneticAlgorithm::CrossoverRandom;
  using TGeneticAlgorithm::CrossoverSame;
  using TGeneticAlgorithm::DecToBin;
  using TGeneticAlgorithm::FPopulation;
  using TGeneticAlgorithm::GetChromo;
  using TGeneticAlgorithm::GetRandomBits;
  using TGeneticAlgorithm::Mask;
  using TGeneticAlgorithm::MaskExcluded;
  using TGeneticAlgorithm::MutateRandom;
  using TGeneticAlgorithm::ReadSizes;
  using TGeneticAlgorithm::Roulette;
  using TGeneticAlgorithm::Selection;

  explicit Search(std::uint64_t seed = 1) { SetSeed(seed); }

  std::uint32_t ticks = 0xFFFFFFF0;  // soon to wrap
  std::uint32_t ticks_a_look = 1;
  TDateTime time = 40000;

 protected:
  std::uint32_t TickCount() override { return ticks += ticks_a_look; }
  TDateTime CurrentTime() override { return time += 1; }
};

TEST(TGeneticAlgorithm, FindsThePerfectChromosome) {
  Search search;
  search.Execute(std::make_shared<CountOnes>(40), kNever, kNoElastic);
  EXPECT_EQ(search.FSolution, String(40, u'1'));
  EXPECT_EQ(search.FBestfitness, 0);
  EXPECT_TRUE(search.FFinisted);
  EXPECT_FALSE(search.HasError());
}

TEST(TGeneticAlgorithm, PerfectPopulationNeedsNoGeneration) {
  Search search;
  search.Execute(std::make_shared<CountOnes>(8), kNever, kNoElastic, u"11111111");
  EXPECT_EQ(search.Generations(), 0);
  EXPECT_EQ(search.FSolution, u"11111111");
}

TEST(TGeneticAlgorithm, SameSeedSameRunOnEveryPlatform) {
  RandomStream random(42);
  EXPECT_EQ(random.Next(), 15021278609987233951U);
  EXPECT_EQ(random.Below(1000), 318U);
  EXPECT_EQ(random.Fraction(), 0.98389416817748876);
  Search search(7);
  const auto fitness = std::make_shared<CountOnes>(20, 3);
  fitness->max_gene = 5;
  fitness->offset = 1;
  search.SetOnProgress([](const TGeneticProgress& now) { return now.Generation < 30; });
  for (int run = 0; run < 2; ++run) {
    search.Execute(fitness, kNever, kNoElastic, u"XX1");
    EXPECT_EQ(ToUtf8(search.FSolution),
              "101101101101011011011001011101101101011011011001101011011101");
    EXPECT_EQ(search.FBestfitness, 44001);
  }
}

TEST(TGeneticAlgorithm, TellsItsProgressAndKeepsTheBest) {
  Search search;
  std::vector<TGeneticProgress> told;
  search.SetOnProgress([&](const TGeneticProgress& now) {
    told.push_back(now);
    return now.Generation < 300;
  });
  const auto fitness = std::make_shared<CountOnes>(256);
  fitness->offset = 1;
  search.Execute(fitness, kNever, kNoElastic);
  ASSERT_EQ(told.size(), 301U);
  for (std::size_t i = 0; i < told.size(); ++i) {
    EXPECT_EQ(told[i].Generation, static_cast<std::int32_t>(i));
    EXPECT_LE(told[i].Best, told[i].Average);
    EXPECT_LE(told[i].Best, told[i == 0 ? 0 : i - 1].Best);
  }
  EXPECT_LT(told.back().Best, told.front().Best);
  EXPECT_EQ(search.FBestfitness, fitness->lowest);
}

// How runs end --------------------------------------------------------------------------------

struct Ending {
  const char* name;
  std::int32_t elastic;
  TDateTime until;
  bool terminated;
  double offset;
  std::int32_t generations;
};

TEST(TGeneticAlgorithm, EndsByItsLimits) {
  const Ending kEndings[] = {
      {"terminated before the run", kNoElastic, kNever, true, 5000, 1},
      {"later than the deadline: a look a generation", kNoElastic, 40004, false, 5000, 5},
      {"no time below 1000", 0, kNever, false, 5, 1},
      {"a negative time below 1000", -7, kNever, false, 5, 1},
      {"30 ms, and two ticks a generation", 30, kNever, false, 5, 16},
  };
  for (const Ending& one : kEndings) {
    Search search;
    const auto fitness = std::make_shared<CountOnes>(4);
    fitness->offset = one.offset;
    search.FTerminated = one.terminated;
    search.Execute(fitness, one.until, one.elastic, u"1111");
    EXPECT_EQ(search.Generations(), one.generations) << one.name;
    EXPECT_TRUE(search.FFinisted) << one.name;
  }
}

TEST(TGeneticAlgorithm, FailureOfTheFitnessLeavesTheBestSoFar) {
  for (int fail_at = 0; fail_at < 200; ++fail_at) {
    Search search;
    const auto fitness = std::make_shared<CountOnes>(64);
    fitness->fail_at = fail_at;
    search.Execute(fitness, kNever, kNoElastic);
    EXPECT_TRUE(search.HasError());
    EXPECT_EQ(search.ErrorMessage(), u"Out of order");
    EXPECT_TRUE(search.FFinisted);
    if (fail_at == 0) {
      EXPECT_EQ(search.FSolution, u"");
      EXPECT_EQ(search.FBestfitness, +TGeneticAlgorithm::kWorstFitness);  // by value
      continue;
    }
    EXPECT_EQ(search.FBestfitness, fitness->lowest) << fail_at;
    const auto zeros = std::count(search.FSolution.begin(), search.FSolution.end(), u'0');
    EXPECT_EQ(2000.0 * static_cast<double>(zeros), fitness->lowest) << fail_at;
  }
}

TEST(TGeneticAlgorithm, RefusesWhatDoesNotFit) {
  Search search;
  search.Execute(nullptr, kNever, 0);
  EXPECT_EQ(search.ErrorMessage(), u"No fitness to search by");
  search.Execute(std::make_shared<CountOnes>(0), kNever, 0);
  EXPECT_EQ(search.ErrorMessage(), u"Chromosome size 0 is not a positive multiple of gene size 1");
  const auto fitness = std::make_shared<CountOnes>(8, 2);
  fitness->lengthens = true;
  search.Execute(fitness, kNever, kNoElastic);
  EXPECT_TRUE(search.ErrorMessage().ends_with(u"' does not have 2 characters"));
  search.Execute(std::make_shared<CountOnes>(8), kNever, kNoElastic);
  EXPECT_FALSE(search.HasError());
  EXPECT_EQ(search.ErrorMessage(), u"");
}

// Operations ----------------------------------------------------------------------------------

TEST(TGeneticAlgorithm, RatesChangeWhenTheSearchStalls) {
  const auto rates = [](std::int32_t n) {
    const TGeneticRates r = Search::CalculateRates(n);
    return std::vector<double>{r.CrossoverRandom, r.CrossoverSame, r.Mutation, r.MutateRandom};
  };
  for (const int n : {0, 99}) EXPECT_EQ(rates(n), (std::vector<double>{0.4, 0.3, 0.3, 0.1})) << n;
  for (const int n : {100, 999}) EXPECT_EQ(rates(n), (std::vector<double>{0.3, 0.2, 0.1, 0.3}));
  EXPECT_EQ(rates(1000), (std::vector<double>{0.3, 0.2, 0.3, 0.3}));
}

TEST(TGeneticAlgorithm, MasksForceTheirOwnPositions) {
  struct Row {
    StringView mask, a, b;
  };
  const Row kRows[] = {{u"XXXX", u"0000", u"1111"},
                       {u"1X0", u"1000", u"1101"},
                       {u"XXXX11", u"0000", u"1111"},
                       {u"Z", u"Z000", u"Z111"}};
  for (const Row& row : kRows) {
    String a = u"0000", b = u"1111", none;
    Search::Mask(row.mask, a, b);
    EXPECT_EQ(a, row.a);
    EXPECT_EQ(b, row.b);
    Search::Mask(row.mask, a, none);
    EXPECT_EQ(none, u"");
  }
}

TEST(TGeneticAlgorithm, ExcludedGenesMoveOnOncePerPattern) {
  struct Row {
    std::vector<String> patterns;
    StringView result;
  };
  const Row kRows[] = {
      {{}, u"000111"},
      {{u"000000"}, u"001111"},
      {{u"000111"}, u"001000"},             // the highest value turns to 0
      {{u"000XXX", u"001XXX"}, u"010111"},  // moved on twice
      {{u"001XXX", u"000XXX"}, u"001111"},  // not compared with the earlier pattern again
      {{u"0001"}, u"001111"},               // a pattern's incomplete gene equals none
  };
  CountOnes fitness(2, 3);
  Search search;
  search.ReadSizes(fitness);
  for (const Row& row : kRows) {
    String a = u"000111", b;
    search.MaskExcluded(row.patterns, a, b);
    EXPECT_EQ(a, row.result);
  }
}

TEST(TGeneticAlgorithm, BinaryDigitsAndBack) {
  EXPECT_EQ(Search::BinToDec(u""), 0);
  EXPECT_EQ(Search::BinToDec(u"0110"), 6);
  EXPECT_EQ(Search::BinToDec(u"1X1"), 5);
  EXPECT_EQ(Search::BinToDec(String(33, u'1')), -1);
  EXPECT_EQ(Search::DecToBin(6, 5), u"00110");
  EXPECT_EQ(Search::DecToBin(9, 3), u"001");
  EXPECT_EQ(Search::DecToBin(-1, 34), u"00" + String(32, u'1'));
  EXPECT_EQ(Search::DecToBin(1, 0), u"");
}

TEST(TGeneticAlgorithm, RandomGenesStayWithinTheirBound) {
  struct Row {
    std::int32_t gene_size, max_gene;
    std::vector<int> seen;  // how often each value comes in 8,000 genes, about
  };
  const Row kRows[] = {{3, 5, {1333, 1333, 1333, 1333, 1333, 1333}},
                       {1, 9, {4000, 4000}},
                       {2, 3, {2000, 2000, 2000, 2000}},
                       {2, -4, {8000}},
                       {40, 1, {4000, 4000}}};
  for (const Row& row : kRows) {
    CountOnes fitness(8000, row.gene_size);
    fitness.max_gene = row.max_gene;
    Search search;
    search.ReadSizes(fitness);
    const String genes = search.GetChromo();
    std::vector<int> seen(row.seen.size());
    for (std::size_t at = 0; at < genes.size(); at += static_cast<std::size_t>(row.gene_size)) {
      const auto gene = StringView(genes).substr(at, static_cast<std::size_t>(row.gene_size));
      ++seen.at(static_cast<std::size_t>(Search::BinToDec(gene)));
    }
    for (std::size_t i = 0; i < seen.size(); ++i) EXPECT_NEAR(seen[i], row.seen[i], 200);
    EXPECT_EQ(search.GetRandomBits(9, 2).size(), 7U);
  }
}

TEST(TGeneticAlgorithm, CrossoversAndMutationsKeepGenesWhole) {
  CountOnes fitness(6, 2);
  fitness.max_gene = 3;
  Search search;
  search.ReadSizes(fitness);
  bool exchanged = false, crossed = false, overwritten = false;
  for (int i = 0; i < 500; ++i) {
    String one = u"000102030405";
    search.CrossoverSame(1, one);
    exchanged = exchanged || one != u"000102030405";
    std::vector<String> genes;
    for (std::size_t at = 0; at < one.size(); at += 2) genes.push_back(one.substr(at, 2));
    std::sort(genes.begin(), genes.end());
    EXPECT_EQ(genes, (std::vector<String>{u"00", u"01", u"02", u"03", u"04", u"05"}));

    String a(12, u'a'), b(12, u'b');
    search.CrossoverRandom(fitness, 1, a, b);
    const std::size_t cut = std::min(a.find(u'b'), a.size());
    crossed = crossed || cut < a.size();
    EXPECT_EQ(cut % 2, 0U);
    EXPECT_EQ(a, String(cut, u'a') + String(12 - cut, u'b'));
    EXPECT_EQ(b, String(cut, u'b') + String(12 - cut, u'a'));

    search.MutateRandom(1, a);
    EXPECT_EQ(a.size(), 12U);
    const auto kept = std::find_if(a.begin(), a.end(), IsDigit) - a.begin();
    overwritten = overwritten || kept < 12;
    EXPECT_EQ(kept % 2, 0);

    String same = u"000102030405";
    search.CrossoverSame(0, same);
    search.CrossoverRandom(fitness, 0, same, b);
    search.MutateRandom(0, same);
    EXPECT_EQ(same, u"000102030405");
  }
  EXPECT_TRUE(exchanged && crossed && overwritten);
}

TEST(TGeneticAlgorithm, TournamentTakesTheBestNearby) {
  Search search;
  for (int i = 0; i < TGeneticAlgorithm::kPopulation; ++i) {
    const double fitness = std::abs(i - 20);
    search.FPopulation.push_back({String(1, static_cast<char16_t>(u'A' + i)), fitness});
  }
  String a, b;
  for (int i = 0; i < 200; ++i) {
    search.Selection(a, b);
    EXPECT_GE(a[0], u'A' + 20);  // every window reaches the middle, or begins behind it
    EXPECT_NE(a, b);
  }
  for (TChromo& one : search.FPopulation) one.Chromo = u"Z";
  search.FPopulation.front().Chromo = u"first";
  EXPECT_EQ(search.Roulette(u"Z"), u"first");
}

}  // namespace
}  // namespace zentavo
