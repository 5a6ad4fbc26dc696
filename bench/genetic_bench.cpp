// 2,000 generations of a genetic algorithm over 256 one-digit genes that counts ones. The cost
// stays above 1,000, so that no search ends early.
//
// The peer is GAlib's simple algorithm with the same population and its own selection and mutation
// rate. The floor does the same work on chromosomes of four machine words.
#include <ga/GA1DBinStrGenome.h>
#include <ga/GASimpleGA.h>

#include <array>
#include <bit>
#include <memory>
#include <span>

#include "ratios.h"
#include "zentavo/optimise/genetic_algorithm.h"

namespace {

constexpr int kGenes = 256;
constexpr int kGenerations = 2000;
constexpr int kPopulation = zentavo::TGeneticAlgorithm::kPopulation;

double CostOf(int ones) {
  return 1000.0 * (kGenes - ones + 1) + 1;
}

class CountOnes : public zentavo::IFitness {
 public:
  double Fitness(zentavo::StringView chromosome) override {
    int ones = 0;
    for (const char16_t digit : chromosome) ones += digit & 1;
    return CostOf(ones);
  }
  std::int32_t ChromoSize() override { return kGenes; }
  std::int32_t GeneSize() override { return 1; }
  std::int32_t MaxGeneSize() override { return 1; }
  void MutateGene(std::int32_t, zentavo::String& gene) override { gene[0] ^= 1; }
};

void Zentavo(benchmark::State& state) {
  const auto fitness = std::make_shared<CountOnes>();
  zentavo::TGeneticAlgorithm search;
  search.SetOnProgress(
      [](const zentavo::TGeneticProgress& now) { return now.Generation < kGenerations; });
  std::uint64_t seed = 0;
  double best = 0;
  for (auto _ : state) {
    search.SetSeed(++seed);
    search.Execute(fitness, zentavo::Now() + 1, 0);
    best = search.FBestfitness;
  }
  if (search.Generations() != kGenerations) state.SkipWithError("ended early");
  state.counters["best"] = best;
}

// GAlib ------------------------------------------------------------------------------------------

float CostOfGenome(GAGenome& genome) {
  const auto& bits = dynamic_cast<GA1DBinaryStringGenome&>(genome);
  int ones = 0;
  for (int i = 0; i < kGenes; ++i) ones += bits.gene(i);
  return static_cast<float>(CostOf(ones));
}

void GaLib(benchmark::State& state) {
  unsigned seed = 0;
  float best = 0;
  for (auto _ : state) {
    GA1DBinaryStringGenome genome(kGenes, CostOfGenome);
    GASimpleGA search(genome);
    search.minimize();
    search.populationSize(kPopulation);
    search.nGenerations(kGenerations);
    search.pCrossover(0.4F);
    search.pMutation(0.01F);  // below a bit a chromosome it tosses a coin for every bit, slowly
    search.elitist(gaTrue);
    search.evolve(++seed);
    best = search.statistics().bestIndividual().score();
  }
  state.counters["best"] = best;
}

// The floor --------------------------------------------------------------------------------------

struct Words {
  std::array<std::uint64_t, kGenes / 64> bits;
  double cost = 0;
};

class BitSearch {
 public:
  explicit BitSearch(std::uint64_t seed) : random_(seed) {
    for (Words& one : population_) {
      for (std::uint64_t& word : one.bits) word = random_.Next();
    }
    Evaluate();
  }

  void RunGeneration() {
    for (std::size_t k = 0; k < kPopulation; k += 2) {
      Words& a = children_[k] = Select();
      Words& b = children_[k + 1] = Select();
      if (random_.Fraction() < 0.4) Cross(a, b);
      for (Words* one : {&a, &b}) {
        if (random_.Fraction() < 0.3) Flip(*one, random_.Below(kGenes));
        if (random_.Fraction() < 0.1) Scatter(*one);
      }
    }
    children_.back() = population_[best_];
    population_.swap(children_);
    Evaluate();
  }

  double Best() const { return population_[best_].cost; }

 private:
  static std::uint64_t MaskBelow(std::size_t word, std::uint32_t bit) {
    const std::uint32_t first = static_cast<std::uint32_t>(word) * 64;
    if (bit <= first) return 0;
    return bit >= first + 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << (bit - first)) - 1;
  }

  const Words& Select() const {
    const std::uint32_t start = random_.Below(kPopulation - 1);
    const std::uint32_t end = std::min<std::uint32_t>(start + 20, kPopulation - 1);
    std::uint32_t best = start;
    for (std::uint32_t i = start; i <= end; ++i) {
      if (population_[i].cost < population_[best].cost) best = i;
    }
    return population_[best];
  }

  void Cross(Words& a, Words& b) {
    const std::uint32_t cut = random_.Below(kGenes);
    for (std::size_t w = 0; w < a.bits.size(); ++w) {
      const std::uint64_t differ = (a.bits[w] ^ b.bits[w]) & ~MaskBelow(w, cut);
      a.bits[w] ^= differ;
      b.bits[w] ^= differ;
    }
  }

  static void Flip(Words& one, std::uint32_t bit) {
    one.bits[bit / 64] ^= std::uint64_t{1} << bit % 64;
  }

  void Scatter(Words& one) {
    std::uint32_t from = random_.Below(kGenes);
    std::uint32_t to = random_.Below(kGenes);
    if (from > to) std::swap(from, to);
    for (std::size_t w = 0; w < one.bits.size(); ++w) {
      one.bits[w] ^= random_.Next() & MaskBelow(w, to) & ~MaskBelow(w, from);
    }
  }

  void Evaluate() {
    best_ = 0;
    for (std::size_t i = 0; i < kPopulation; ++i) {
      int ones = 0;
      for (const std::uint64_t word : population_[i].bits) ones += std::popcount(word);
      population_[i].cost = CostOf(ones);
      if (population_[i].cost < population_[best_].cost) best_ = i;
    }
  }

  mutable zentavo::RandomStream random_;
  std::array<Words, kPopulation> population_;
  std::array<Words, kPopulation> children_;
  std::size_t best_ = 0;
};

void BitWords(benchmark::State& state) {
  std::uint64_t seed = 0;
  double best = 0;
  for (auto _ : state) {
    BitSearch search(++seed);
    for (int generation = 0; generation < kGenerations; ++generation) search.RunGeneration();
    best = search.Best();
  }
  state.counters["best"] = best;
}

}  // namespace

int main(int argc, char** argv) {
  const auto add = [](const char* name, auto function) {
    benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond);
  };
  add("count_ones/zentavo", Zentavo);
  add("count_ones/galib", GaLib);
  add("count_ones/bit_words_floor", BitWords);
  return bench::RunWithRatios(argc, argv);
}
