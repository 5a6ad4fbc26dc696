// A fitness for tests of the genetic algorithm.
#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include "zentavo/framework/exception.h"
#include "zentavo/optimise/genetic_algorithm.h"

namespace zentavo::testing {

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

}  // namespace zentavo::testing
