#include "zentavo/optimise/genetic_algorithm.h"

#include <exception>
#include <numeric>
#include <random>
#include <utility>

#include "zentavo/foundation/errors.h"
#include "zentavo/framework/exception.h"
#include "zentavo/platform/clock.h"

namespace zentavo {

namespace {

// The search counts as nearly done below this.
constexpr double kElasticFitness = 1000;

std::uint64_t UnpredictableSeed() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

}  // namespace

IFitness::~IFitness() = default;
void IFitness::Reserved1() {}
void IFitness::Reserved2() {}
std::vector<TCromoGroup> IFitness::GeneGroups() {
  return {};
}

struct TGeneticAlgorithm::Limits {
  TDateTime until_time;
  std::int32_t elastic_ms;
  StringView mask;
  std::span<const String> excluded;
};

TGeneticAlgorithm::TGeneticAlgorithm() : random_(UnpredictableSeed()) {}
TGeneticAlgorithm::~TGeneticAlgorithm() = default;

void TGeneticAlgorithm::SetSeed(std::uint64_t Seed) {
  seed_ = Seed;
  has_seed_ = true;
  random_.Seed(Seed);
}

void TGeneticAlgorithm::SetOnProgress(TProgressEvent OnProgress) {
  on_progress_ = std::move(OnProgress);
}

void TGeneticAlgorithm::Execute(const std::shared_ptr<IFitness>& Afitness, TDateTime AUntilTime,
                                std::int32_t AElasticCount, StringView AMask,
                                std::span<const String> AMasksExc) {
  FHasError = FCalcElastic = FFinisted = false;
  FErrorMessage.clear();
  FGenerations = no_improvement_ = evaluated_ = 0;
  below_threshold_ = has_looked_ = false;
  if (has_seed_) random_.Seed(seed_);
  // The call-backs may drop the owner's last reference.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const std::shared_ptr<IFitness> kept = Afitness;
  try {
    if (kept == nullptr) ZentavoError(u"No fitness to search by");
    Run(*kept, {AUntilTime, AElasticCount, AMask, AMasksExc});
  } catch (const Exception& error) {
    SetError(error.Message());
  } catch (const std::exception& error) {
    SetError(FromUtf8(error.what()));
  } catch (...) {
    SetError(u"Unknown error");
  }
  KeepBestSoFar();
  FFinisted = true;
}

void TGeneticAlgorithm::Run(IFitness& fitness, const Limits& limits) {
  ReadSizes(fitness);
  InitPopulation(limits.mask, limits.excluded);
  FBestfitness = FindBestPopFitness(fitness, best_index_);
  if (!ReportProgress()) return;
  while (FBestfitness > 0) {
    RunGeneration(fitness, limits);
    if (!ReportProgress() || !Continues(limits)) break;
  }
}

void TGeneticAlgorithm::RunGeneration(IFitness& fitness, const Limits& limits) {
  Breed(fitness, CalculateRates(no_improvement_), limits);
  ++FGenerations;
  const double previous = FBestfitness;
  FBestfitness = FindBestPopFitness(fitness, best_index_);
  no_improvement_ = previous > FBestfitness ? 0 : no_improvement_ + 1;
}

// Replaces the population by its children and, in the last place, its best individual.
void TGeneticAlgorithm::Breed(IFitness& fitness, const TGeneticRates& rates, const Limits& limits) {
  for (std::size_t k = 0; k < kPopulation; k += 2) {
    String& a = children_[k].Chromo;
    String& b = children_[k + 1].Chromo;
    Selection(a, b);
    CrossoverRandom(fitness, rates.CrossoverRandom, a, b);
    CrossoverSame(rates.CrossoverSame, a);
    CrossoverSame(rates.CrossoverSame, b);
    Mutation(fitness, rates.Mutation, a, b);
    MutateRandom(rates.MutateRandom, a);
    MutateRandom(rates.MutateRandom, b);
    Mask(limits.mask, a, b);
    MaskExcluded(limits.excluded, a, b);
    children_[k].Fitness = children_[k + 1].Fitness = 0;
  }
  children_.back() = FPopulation[static_cast<std::size_t>(best_index_)];
  FPopulation.swap(children_);
  evaluated_ = 0;
}

bool TGeneticAlgorithm::Continues(const Limits& limits) {
  if (FBestfitness < kElasticFitness && !below_threshold_) {
    below_threshold_ = true;
    below_since_ = TickCount();
  }
  if (FTerminated || IsLate(limits)) return false;
  if (!below_threshold_) return true;
  return limits.elastic_ms > 0 &&
         TickCount() - below_since_ <= static_cast<std::uint32_t>(limits.elastic_ms);
}

// Looking at the local time costs more than a short generation, so once a millisecond is enough.
bool TGeneticAlgorithm::IsLate(const Limits& limits) {
  const std::uint32_t ticks = TickCount();
  if (has_looked_ && ticks == last_look_) return false;
  has_looked_ = true;
  last_look_ = ticks;
  return CurrentTime() > limits.until_time;
}

bool TGeneticAlgorithm::ReportProgress() {
  if (!on_progress_) return true;
  const double sum =
      std::accumulate(FPopulation.begin(), FPopulation.end(), 0.0,
                      [](double total, const TChromo& one) { return total + one.Fitness; });
  return on_progress_({FGenerations, FBestfitness, sum / kPopulation});
}

// The fitness may have failed in the middle of a population, whose last place then holds the best
// individual of the one before.
void TGeneticAlgorithm::KeepBestSoFar() {
  const bool has_survivor = FGenerations > 0 && evaluated_ < kPopulation;
  if (evaluated_ == 0 && !has_survivor) {
    FSolution.clear();
    FBestfitness = kWorstFitness;
    return;
  }
  const TChromo* best = &FPopulation[static_cast<std::size_t>(best_index_)];
  const TChromo& survivor = FPopulation.back();
  if (has_survivor && (evaluated_ == 0 || !(best->Fitness < survivor.Fitness))) best = &survivor;
  FSolution = best->Chromo;
  if (FHasError) FBestfitness = best->Fitness;
}

void TGeneticAlgorithm::SetError(String message) {
  FHasError = true;
  FErrorMessage = std::move(message);
}

std::uint32_t TGeneticAlgorithm::TickCount() {
  return platform::TickCount();
}

TDateTime TGeneticAlgorithm::CurrentTime() {
  return Now();
}

}  // namespace zentavo
