#include "zentavo/optimise/genetic_algorithm.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

#include "zentavo/framework/exception.h"

static constinit std::atomic<std::int64_t> allocations{0};

[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* const block = std::malloc(size)) return block;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
  std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

namespace zentavo {
namespace {

constexpr TDateTime kNever = 2958465;
constexpr std::int32_t kNoElastic = std::numeric_limits<std::int32_t>::max();

// Counts the digits that are not '1'; each costs 2,000, so that only 0 is below 1,000.
class CountOnes : public IFitness {
 public:
  explicit CountOnes(std::int32_t genes, std::int32_t gene_size = 1)
      : genes_(genes), gene_size_(gene_size) {}

  double Fitness(StringView chromo) override {
    if (calls_++ == fail_at) throw Exception(u"Out of order");
    const double cost =
        offset + 2000.0 * static_cast<double>(std::count(chromo.begin(), chromo.end(), u'0'));
    lowest = std::min(lowest, cost);
    return cost;
  }
  std::int32_t ChromoSize() override { return genes_ * gene_size_; }
  std::int32_t GeneSize() override { return gene_size_; }
  std::int32_t MaxGeneSize() override { return max_gene; }
  void MutateGene(std::int32_t index, String& gene) override {
    if (index < 0 || index >= genes_) throw std::out_of_range("index");
    gene.back() = gene.back() == u'0' ? u'1' : u'0';
    if (lengthens) gene += u'1';
  }

  int fail_at = -1;
  bool lengthens = false;
  double offset = 0;
  double lowest = 1e300;
  std::int32_t max_gene = 1;

 private:
  std::int32_t genes_, gene_size_;
  int calls_ = 0;
};

// The operations in the open, and clocks that tests set.
class Search : public TGeneticAlgorithm {
 public:
  using T = TGeneticAlgorithm;
  using T::BinToDec, T::CalculateRates, T::CrossoverRandom, T::CrossoverSame, T::DecToBin;
  using T::FPopulation, T::GetChromo, T::GetRandomBits, T::Mask, T::MaskExcluded, T::MutateRandom;
  using T::ReadSizes, T::Roulette, T::Selection;

  explicit Search(std::uint64_t seed = 1) { SetSeed(seed); }

  std::uint32_t ticks = 0xFFFFFFF0;  // soon to wrap
  TDateTime time = 40000;

 protected:
  std::uint32_t TickCount() override { return ++ticks; }
  TDateTime CurrentTime() override { return time += 1; }
};

TEST(TGeneticAlgorithm, FindsThePerfectChromosome) {
  Search search;
  search.Execute(std::make_shared<CountOnes>(40), kNever, kNoElastic);
  EXPECT_EQ(search.FSolution, String(40, u'1'));
  EXPECT_EQ(search.FBestfitness, 0);
  EXPECT_TRUE(search.FFinisted && !search.HasError());
  // A perfect population needs no generation.
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

TEST(TGeneticAlgorithm, AllocatesNothingAfterTheFirstGeneration) {
  const std::vector<String> excluded = {String(256, u'0'), String(12, u'1')};
  std::int64_t first = 0;
  std::int64_t last = 0;
  for (const std::int32_t gene_size : {1, 16}) {
    TGeneticAlgorithm search;
    search.SetOnProgress([&](const TGeneticProgress& now) {
      (now.Generation <= 1 ? first : last) = allocations;
      return now.Generation < 200;
    });
    const std::int64_t before = allocations;
    const auto fitness = std::make_shared<CountOnes>(256 / gene_size, gene_size);
    fitness->offset = 1;
    fitness->max_gene = 1000;
    search.Execute(fitness, Now() + 1, 0, u"1X0X", excluded);
    ASSERT_EQ(search.Generations(), 200);
    if (first - before < 80) GTEST_SKIP() << "the library's allocations are not seen here";
    EXPECT_EQ(last, first);
  }
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
    String a = u"0000";
    String b = u"1111";
    String none;
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
    String a = u"000111";
    String b;
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
    std::int32_t gene_size, max_gene, values;
  };
  const Row kRows[] = {{3, 5, 6}, {1, 9, 2}, {2, 3, 4}, {2, -4, 1}, {40, 1, 2}};
  for (const Row& row : kRows) {
    CountOnes fitness(8000, row.gene_size);
    fitness.max_gene = row.max_gene;
    Search search;
    search.ReadSizes(fitness);
    const String genes = search.GetChromo();
    std::vector<int> seen(static_cast<std::size_t>(row.values));  // how often each value came
    for (std::size_t at = 0; at < genes.size(); at += static_cast<std::size_t>(row.gene_size)) {
      const auto gene = StringView(genes).substr(at, static_cast<std::size_t>(row.gene_size));
      ++seen.at(static_cast<std::size_t>(Search::BinToDec(gene)));
    }
    for (const int times : seen) EXPECT_NEAR(times, 8000.0 / row.values, 200);
    EXPECT_EQ(search.GetRandomBits(9, 2).size(), 7U);
  }
}

TEST(TGeneticAlgorithm, CrossoversAndMutationsKeepGenesWhole) {
  CountOnes fitness(6, 2);
  fitness.max_gene = 3;
  Search search;
  search.ReadSizes(fitness);
  bool exchanged = false;
  bool crossed = false;
  bool overwritten = false;
  for (int i = 0; i < 500; ++i) {
    String one = u"000102030405";
    search.CrossoverSame(1, one);
    exchanged = exchanged || one != u"000102030405";
    std::vector<String> genes;
    for (std::size_t at = 0; at < one.size(); at += 2) genes.push_back(one.substr(at, 2));
    std::sort(genes.begin(), genes.end());
    EXPECT_EQ(genes, (std::vector<String>{u"00", u"01", u"02", u"03", u"04", u"05"}));

    String a(12, u'a');
    String b(12, u'b');
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
  String a;
  String b;
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
