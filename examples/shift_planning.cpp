// Fills the shifts of a week with people: a gene a shift, its value the person's number. The cost
// counts what nobody wants: two shifts in a row, an unfair share, a shift that a person cannot
// take.
#include <cstdlib>
#include <iostream>
#include <memory>
#include <vector>

#include "zentavo/optimise/genetic_algorithm.h"

namespace {

using zentavo::String;
using zentavo::StringView;

constexpr std::int32_t kShifts = 21;  // three a day
constexpr std::int32_t kPeople = 6;
constexpr std::int32_t kDigits = 3;  // of a gene

std::size_t PersonOf(StringView gene) {
  std::size_t person = 0;
  for (const char16_t digit : gene) person = person * 2 + (digit == u'1' ? 1 : 0);
  return person;
}

std::vector<std::size_t> Plan(StringView chromosome) {
  std::vector<std::size_t> plan;
  for (std::size_t at = 0; at < chromosome.size(); at += kDigits) {
    plan.push_back(PersonOf(chromosome.substr(at, kDigits)));
  }
  return plan;
}

class Shifts : public zentavo::IFitness {
 public:
  double Fitness(StringView chromosome) override {
    constexpr double kNuisance = 2000;  // so that only a perfect plan is below 1000
    std::vector<int> share(kPeople);
    double cost = 0;
    std::size_t before = kPeople;
    std::size_t shift = 0;
    for (const std::size_t person : Plan(chromosome)) {
      if (person == before) cost += kNuisance;
      if (person == 0 && shift % 3 == 2) cost += kNuisance;  // the first one never works late
      if (++share[person] > kShifts / kPeople + 1) cost += kNuisance;
      before = person;
      ++shift;
    }
    return cost;
  }
  std::int32_t ChromoSize() override { return kShifts * kDigits; }
  std::int32_t GeneSize() override { return kDigits; }
  std::int32_t MaxGeneSize() override { return kPeople - 1; }
  void MutateGene(std::int32_t, String& gene) override {
    const auto next = static_cast<std::uint32_t>((PersonOf(gene) + 1) % kPeople);
    for (std::size_t i = 0; i < kDigits; ++i)
      gene[i] = (next >> (kDigits - 1 - i) & 1) ? u'1' : u'0';
  }
};

}  // namespace

int main() {
  constexpr double kSeconds = 1.0 / 86400;  // in days
  zentavo::TGeneticAlgorithm search;
  search.SetSeed(7);
  search.SetOnProgress([](const zentavo::TGeneticProgress& now) {
    if (now.Generation % 50 == 0) std::cout << now.Generation << ": " << now.Best << "\n";
    return now.Generation < 5000;
  });
  // The first shift is promised to person 5.
  search.Execute(std::make_shared<Shifts>(), zentavo::Now() + 20 * kSeconds, 0, u"101");
  if (search.HasError()) {
    std::cerr << zentavo::ToUtf8(search.ErrorMessage()) << "\n";
    return EXIT_FAILURE;
  }
  for (const std::size_t person : Plan(search.FSolution)) std::cout << person << " ";
  std::cout << "\ncost " << search.FBestfitness << " after " << search.Generations()
            << " generations\n";
  return search.FBestfitness == 0 && Plan(search.FSolution)[0] == 5 ? EXIT_SUCCESS : EXIT_FAILURE;
}
