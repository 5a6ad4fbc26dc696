// A genetic algorithm over chromosomes of gene characters, minimising what the host calls fitness.
//
// A chromosome is a text of ChromoSize() characters, GeneSize() of them a gene; new genes are
// numbers in binary digits. The population is fixed at 40. Each generation keeps the best
// individual of the one before, breeds the others by tournaments, two kinds of crossover and two of
// mutation, whose rates change when the search stalls, and then forces the masks. A run ends at the
// fitness 0, and at the end of a generation: when FTerminated is set, behind a deadline, a given
// time after the fitness first fell below 1000, or when the progress call-back says so.
//
//   TGeneticAlgorithm search;
//   search.SetSeed(7);                                   // optional: makes the run repeatable
//   search.Execute(fitness, Now() + 5.0 / 86400, 1000);  // five seconds, one below 1000
//   search.FSolution;                                    // the best chromosome
//
// A run belongs to the thread that calls Execute, which also makes all calls to the host's
// interface; another thread may set FTerminated, and nothing else.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "zentavo/framework/date_time.h"
#include "zentavo/framework/text.h"
#include "zentavo/optimise/random_stream.h"

namespace zentavo {

// Genes that belong together, for hosts; the search itself does not look at groups.
struct TCromoGroup {
  std::int32_t FirstGene = 0;  // from 0
  std::int32_t GeneCount = 0;
};

// What a host supplies. An exception from any of these ends the run (see Execute).
class ZENTAVO_API IFitness {
 public:
  IFitness() = default;
  IFitness(const IFitness&) = delete;
  IFitness& operator=(const IFitness&) = delete;
  virtual ~IFitness();

  // Not called; they keep the place of two operations of older hosts.
  virtual void Reserved1();
  virtual void Reserved2();

  // Lower is better, 0 is perfect. The view is valid during the call.
  virtual double Fitness(StringView Chromo) = 0;
  // Characters in a chromosome, a multiple of GeneSize().
  virtual std::int32_t ChromoSize() = 0;
  virtual std::vector<TCromoGroup> GeneGroups();
  // Characters in a gene, at least 1.
  virtual std::int32_t GeneSize() = 0;
  // New random genes are 0..MaxGeneSize(), as far as GeneSize() binary digits hold that.
  virtual std::int32_t MaxGeneSize() = 0;
  // Replaces `Gene`, the text of gene `Index` (from 0), by another valid one of the same length.
  virtual void MutateGene(std::int32_t Index, String& Gene) = 0;
};

struct TChromo {
  String Chromo;
  double Fitness = 0;
};

// The probabilities of the four operators on a pair or an individual.
struct TGeneticRates {
  double CrossoverRandom = 0;
  double CrossoverSame = 0;
  double Mutation = 0;
  double MutateRandom = 0;
};

struct TGeneticProgress {
  std::int32_t Generation = 0;  // 0 is the initial population
  double Best = 0;
  double Average = 0;  // of the 40
};

// Neither copied nor moved. Its operations, too, may be called by a host that derives from it.
class ZENTAVO_API TGeneticAlgorithm {
 public:
  static constexpr std::int32_t kPopulation = 40;
  // The fitness that counts as none found yet.
  static constexpr double kWorstFitness = 2147483647.0;

  // Returns false to end the run.
  using TProgressEvent = std::function<bool(const TGeneticProgress&)>;

  TGeneticAlgorithm();
  TGeneticAlgorithm(const TGeneticAlgorithm&) = delete;
  TGeneticAlgorithm& operator=(const TGeneticAlgorithm&) = delete;
  virtual ~TGeneticAlgorithm();

  // Makes every later run start from this seed, so that runs that end by generations, not by time,
  // are repeatable, on every platform. Without a seed each run differs.
  void SetSeed(std::uint64_t Seed);
  // Called for the initial population and after every generation; empty for none.
  void SetOnProgress(TProgressEvent OnProgress);

  // Runs the search to its end. AUntilTime is local time; AElasticCount is in milliseconds, and
  // with 0 or less the run ends with the generation in which the fitness fell below 1000. A
  // character of AMask other than 'X' is forced at its position; characters behind the chromosome's
  // end are ignored. A gene that equals the gene of an excluded pattern at the same place becomes
  // the next value.
  //
  // Leaves the best chromosome in FSolution, its fitness in FBestfitness. Raises nothing of the
  // call-backs: an exception, and sizes that do not fit together ("Chromosome size %d is not a
  // positive multiple of gene size %d"), set HasError and ErrorMessage and end the run with the
  // best so far in FSolution, the empty text when there is none. FTerminated is not cleared: set
  // before, it ends the run after one generation.
  void Execute(const std::shared_ptr<IFitness>& Afitness, TDateTime AUntilTime,
               std::int32_t AElasticCount, StringView AMask = {},
               std::span<const String> AMasksExc = {});

  std::int32_t Generations() const { return FGenerations; }
  bool HasError() const { return FHasError; }
  const String& ErrorMessage() const { return FErrorMessage; }

 protected:
  std::int32_t FGenerations = 0;  // completed in the current run
  bool FHasError = false;
  String FErrorMessage;
  std::vector<TChromo> FPopulation;
  std::int32_t FChromoSize = 0;
  std::int32_t FGeneSize = 0;
  std::int32_t FMaxGeneSize = 0;
  std::vector<TCromoGroup> FGeneGroups;

 public:
  std::atomic<bool> FTerminated = false;
  std::atomic<bool> FFinisted = false;

 protected:
  bool FCalcElastic = false;

 public:
  String FSolution;
  double FBestfitness = 0;

 protected:
  // The clocks of a run: milliseconds that wrap at 2^32, and local time.
  virtual std::uint32_t TickCount();
  virtual TDateTime CurrentTime();

  // Reads the sizes and groups. Raises EZentavoError when they do not fit together.
  void ReadSizes(IFitness& Afitness);
  void InitPopulation(StringView AMask, std::span<const String> AMasksExc);
  // Computes the fitness of all; returns the lowest below kWorstFitness and the index of the first
  // that has it, kWorstFitness and 0 when there is none.
  double FindBestPopFitness(IFitness& Afitness, std::int32_t& Index);
  // The best of 21 neighbouring individuals at a random place, fewer at the end, whose text is not
  // `Exclude`; the first individual when there is none. Valid until the population changes.
  StringView Roulette(StringView Exclude);
  void Selection(String& A, String& B);
  // Exchanges two of the chromosome's gene values wherever they occur.
  void CrossoverSame(double Rate, String& A);
  // Exchanges everything behind a random gene.
  void CrossoverRandom(IFitness& Afitness, double Rate, String& A, String& B);
  // Lets the host replace a random gene. Raises EZentavoError when its length changes.
  void Mutate(IFitness& Afitness, double Rate, String& A);
  void Mutation(IFitness& Afitness, double Rate, String& A, String& B);
  // Overwrites the genes between two random places by random ones.
  void MutateRandom(double Rate, String& A);
  static TGeneticRates CalculateRates(std::int32_t NoImprove);
  // Both leave an empty B alone.
  static void Mask(StringView AMask, String& A, String& B);
  // Compares with the patterns in their order, so that a gene that a later one has moved on may
  // again equal an earlier one: callers rely on this.
  void MaskExcluded(std::span<const String> AMasksExc, String& A, String& B);
  static TChromo InitChromo(StringView Text, double Fitness);
  String GetChromo();
  String GetRandomBits(std::int32_t From, std::int32_t To);
  // Every character but '1' counts as 0; of more than 32 digits the last 32 count.
  static std::int32_t BinToDec(StringView Bits);
  // The low `Width` digits of a value that needs more.
  static String DecToBin(std::int32_t Value, std::int32_t Width);

 private:
  struct Limits;

  void Run(IFitness& fitness, const Limits& limits);
  void RunGeneration(IFitness& fitness, const Limits& limits);
  void Breed(IFitness& fitness, const TGeneticRates& rates, const Limits& limits);
  bool Continues(const Limits& limits);
  bool IsLate(const Limits& limits);
  bool ReportProgress();
  void KeepBestSoFar();
  void SetError(String message);
  std::int32_t RandomGeneStart();
  void WriteRandomGenes(std::span<char16_t> characters);
  void MoveExcludedOn(StringView pattern, String& chromosome) const;

  RandomStream random_;
  std::uint64_t seed_ = 0;
  bool has_seed_ = false;
  TProgressEvent on_progress_;
  std::uint32_t gene_values_ = 1;  // how many values a random gene may have
  bool any_digits_ = false;        // a random gene may be any digits
  std::vector<TChromo> children_;
  String gene_;  // scratch
  String other_gene_;
  std::int32_t evaluated_ = 0;  // individuals with a fitness, from the first on
  std::int32_t best_index_ = 0;
  std::int32_t no_improvement_ = 0;
  bool below_threshold_ = false;
  std::uint32_t below_since_ = 0;  // ticks
  std::uint32_t last_look_ = 0;    // ticks at the last look at the local time
  bool has_looked_ = false;
};

}  // namespace zentavo
