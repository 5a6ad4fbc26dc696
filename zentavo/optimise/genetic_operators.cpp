// What happens to chromosomes.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "zentavo/foundation/errors.h"
#include "zentavo/optimise/genetic_algorithm.h"

namespace zentavo {

namespace {

constexpr char16_t kFree = u'X';  // a position that a mask leaves alone

// Ordinal; the population is full of equal texts, which the standard comparison takes unit by unit.
bool SameUnits(StringView a, StringView b) {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

void ExchangeCharacters(String& text, char16_t a, char16_t b) {
  if (a == b) return;
  const auto both = static_cast<char16_t>(a ^ b);
  for (char16_t& unit : text) {
    const auto other = static_cast<char16_t>(unit ^ both);
    unit = unit == a || unit == b ? other : unit;
  }
}

void ExchangeGenes(String& text, const String& a, const String& b) {
  const std::size_t size = a.size();
  for (std::size_t at = 0; at + size <= text.size(); at += size) {
    const StringView gene = StringView(text).substr(at, size);
    if (SameUnits(gene, a)) {
      text.replace(at, size, b);
    } else if (SameUnits(gene, b)) {
      text.replace(at, size, a);
    }
  }
}

void WriteDigits(std::uint32_t value, std::span<char16_t> digits) {
  for (std::size_t i = digits.size(); i-- > 0; value >>= 1) {
    digits[i] = static_cast<char16_t>(u'0' + (value & 1));
  }
}

void ForceMask(StringView mask, String& chromosome) {
  const std::size_t size = std::min(mask.size(), chromosome.size());
  for (std::size_t i = 0; i < size; ++i) {
    if (mask[i] != kFree) chromosome[i] = mask[i];
  }
}

}  // namespace

void TGeneticAlgorithm::ReadSizes(IFitness& Afitness) {
  FChromoSize = Afitness.ChromoSize();
  FGeneSize = Afitness.GeneSize();
  FMaxGeneSize = Afitness.MaxGeneSize();
  FGeneGroups = Afitness.GeneGroups();
  if (FGeneSize < 1 || FChromoSize < 1 || FChromoSize % FGeneSize != 0) {
    ZentavoErrorFmt(u"Chromosome size %d is not a positive multiple of gene size %d",
                    {FChromoSize, FGeneSize});
  }
  constexpr std::int32_t kValueDigits = std::numeric_limits<std::int32_t>::digits;
  const std::uint32_t most =
      FGeneSize >= kValueDigits ? std::numeric_limits<std::int32_t>::max() : (1U << FGeneSize) - 1;
  gene_values_ = std::min(most, static_cast<std::uint32_t>(std::max(FMaxGeneSize, 0))) + 1;
  any_digits_ = FGeneSize < kValueDigits && gene_values_ == most + 1;
}

void TGeneticAlgorithm::InitPopulation(StringView AMask, std::span<const String> AMasksExc) {
  FPopulation.resize(kPopulation);
  String none;
  for (TChromo& one : FPopulation) {
    String chromosome = GetChromo();
    Mask(AMask, chromosome, none);
    MaskExcluded(AMasksExc, chromosome, none);
    one = InitChromo(chromosome, 0);
  }
  children_ = FPopulation;
  evaluated_ = 0;
}

double TGeneticAlgorithm::FindBestPopFitness(IFitness& Afitness, std::int32_t& Index) {
  double best = kWorstFitness;
  Index = 0;
  for (evaluated_ = 0; evaluated_ < kPopulation; ++evaluated_) {
    TChromo& one = FPopulation[static_cast<std::size_t>(evaluated_)];
    const double fitness = Afitness.Fitness(one.Chromo);
    one.Fitness = fitness;
    if (fitness < best) {
      best = fitness;
      Index = evaluated_;
    }
  }
  return best;
}

StringView TGeneticAlgorithm::Roulette(StringView Exclude) {
  constexpr std::uint32_t kWindow = 20;
  const std::uint32_t start = random_.Below(kPopulation - 1);
  const std::uint32_t end = std::min<std::uint32_t>(start + kWindow, kPopulation - 1);
  const TChromo* result = &FPopulation.front();
  double best = kWorstFitness;
  for (std::uint32_t slot = start; slot <= end; ++slot) {
    const TChromo& one = FPopulation[slot];
    if (one.Fitness < best && !SameUnits(one.Chromo, Exclude)) {
      best = one.Fitness;
      result = &one;
    }
  }
  return result->Chromo;
}

void TGeneticAlgorithm::Selection(String& A, String& B) {
  A = Roulette({});
  B = Roulette(A);
}

std::int32_t TGeneticAlgorithm::RandomGeneStart() {
  const auto position =
      static_cast<std::int32_t>(random_.Below(static_cast<std::uint32_t>(FChromoSize)));
  return position - position % FGeneSize;
}

void TGeneticAlgorithm::CrossoverSame(double Rate, String& A) {
  if (!(random_.Fraction() < Rate)) return;
  const auto first = static_cast<std::size_t>(RandomGeneStart());
  const auto second = static_cast<std::size_t>(RandomGeneStart());
  if (FGeneSize == 1) return ExchangeCharacters(A, A[first], A[second]);
  const auto size = static_cast<std::size_t>(FGeneSize);
  gene_.assign(A, first, size);
  other_gene_.assign(A, second, size);
  ExchangeGenes(A, gene_, other_gene_);
}

void TGeneticAlgorithm::CrossoverRandom(IFitness&, double Rate, String& A, String& B) {
  if (!(random_.Fraction() < Rate)) return;
  const std::ptrdiff_t position = random_.Below(static_cast<std::uint32_t>(FChromoSize));
  const std::ptrdiff_t cut = FGeneSize * ((position + 1) / FGeneSize);
  std::swap_ranges(A.begin() + cut, A.end(), B.begin() + cut);
}

void TGeneticAlgorithm::Mutate(IFitness& Afitness, double Rate, String& A) {
  if (!(random_.Fraction() < Rate)) return;
  const auto genes = static_cast<std::uint32_t>(FChromoSize / FGeneSize);
  const auto index = static_cast<std::int32_t>(random_.Below(genes));
  const auto size = static_cast<std::size_t>(FGeneSize);
  const std::size_t start = static_cast<std::size_t>(index) * size;
  gene_.assign(A, start, size);
  Afitness.MutateGene(index, gene_);
  if (gene_.size() != size) {
    ZentavoErrorFmt(u"Gene '%s' does not have %d characters", {Excerpt(gene_), FGeneSize});
  }
  A.replace(start, size, gene_);
}

void TGeneticAlgorithm::Mutation(IFitness& Afitness, double Rate, String& A, String& B) {
  Mutate(Afitness, Rate, A);
  Mutate(Afitness, Rate, B);
}

void TGeneticAlgorithm::MutateRandom(double Rate, String& A) {
  if (!(random_.Fraction() < Rate)) return;
  const std::int32_t first = RandomGeneStart();
  const std::int32_t second = RandomGeneStart();
  const auto start = static_cast<std::size_t>(std::min(first, second));
  const auto length = static_cast<std::size_t>(std::abs(first - second));
  WriteRandomGenes(std::span(A).subspan(start, length));
}

TGeneticRates TGeneticAlgorithm::CalculateRates(std::int32_t NoImprove) {
  if (NoImprove < 100) return {0.4, 0.3, 0.3, 0.1};
  if (NoImprove < 1000) return {0.3, 0.2, 0.1, 0.3};
  return {0.3, 0.2, 0.3, 0.3};
}

void TGeneticAlgorithm::Mask(StringView AMask, String& A, String& B) {
  ForceMask(AMask, A);
  ForceMask(AMask, B);
}

void TGeneticAlgorithm::MaskExcluded(std::span<const String> AMasksExc, String& A, String& B) {
  for (const String& pattern : AMasksExc) {
    MoveExcludedOn(pattern, A);
    MoveExcludedOn(pattern, B);
  }
}

void TGeneticAlgorithm::MoveExcludedOn(StringView pattern, String& chromosome) const {
  const auto size = static_cast<std::size_t>(FGeneSize);
  const std::size_t end = std::min(pattern.size(), chromosome.size());
  for (std::size_t at = 0; at + size <= end; at += size) {
    const StringView gene = StringView(chromosome).substr(at, size);
    if (!SameUnits(gene, pattern.substr(at, size))) continue;
    const std::uint32_t next = static_cast<std::uint32_t>(BinToDec(gene)) + 1;
    WriteDigits(next, std::span(chromosome).subspan(at, size));
  }
}

TChromo TGeneticAlgorithm::InitChromo(StringView Text, double Fitness) {
  return {String(Text), Fitness};
}

String TGeneticAlgorithm::GetChromo() {
  String chromosome(static_cast<std::size_t>(FChromoSize), u'0');
  WriteRandomGenes(chromosome);
  return chromosome;
}

String TGeneticAlgorithm::GetRandomBits(std::int32_t From, std::int32_t To) {
  const std::int64_t length = std::abs(std::int64_t{To} - From);
  return GetChromo().substr(0, static_cast<std::size_t>(length));
}

// Where every digit is as likely as the other, one random number serves for many of them.
void TGeneticAlgorithm::WriteRandomGenes(std::span<char16_t> characters) {
  constexpr std::size_t kBits = 64;
  const std::size_t step = any_digits_ ? kBits : static_cast<std::size_t>(FGeneSize);
  for (std::size_t at = 0; at < characters.size(); at += step) {
    const auto part = characters.subspan(at, std::min(step, characters.size() - at));
    if (!any_digits_) {
      WriteDigits(random_.Below(gene_values_), part);
      continue;
    }
    std::uint64_t bits = random_.Next();
    for (char16_t& digit : part) {
      digit = static_cast<char16_t>(u'0' + (bits & 1));
      bits >>= 1;
    }
  }
}

std::int32_t TGeneticAlgorithm::BinToDec(StringView Bits) {
  std::uint32_t value = 0;
  for (const char16_t digit : Bits) value = value * 2 + (digit == u'1' ? 1 : 0);
  return static_cast<std::int32_t>(value);
}

String TGeneticAlgorithm::DecToBin(std::int32_t Value, std::int32_t Width) {
  String digits(static_cast<std::size_t>(std::max(Width, 0)), u'0');
  WriteDigits(static_cast<std::uint32_t>(Value), digits);
  return digits;
}

}  // namespace zentavo
