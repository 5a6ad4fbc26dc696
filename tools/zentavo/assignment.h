// A planning problem: each row gets a column of its own at the lowest total cost.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zentavo/framework/text.h"
#include "zentavo/optimise/genetic_algorithm.h"
#include "zentavo/optimise/random_stream.h"

namespace zentavo::tool {

struct CostTable {
  std::vector<std::string> row_names;
  std::vector<std::string> column_names;
  std::vector<std::vector<double>> costs;  // of each row in each column
};

// Reads a CSV table of numbers. The first record holds the columns' names when a cell behind its
// first is no number, or the first is empty; the first column holds the rows' names when a cell
// below the first record is no number. Rows and columns without names are numbered from 0. Raises
// what reading raises, CsvError "'x' is not a number", and Exception "No costs", "3 rows cannot
// have a column each of 2".
CostTable ReadCosts(const std::string& file);

// The column of each row.
using Assignment = std::vector<std::uint32_t>;

double CostOf(const CostTable& table, const Assignment& assignment);

// The fitness of a chromosome that has, for each row, a gene with the column that it asks for. Rows
// get it in their order; those whose column is taken, or is none, then get the cheapest free one.
class AssignmentFitness : public IFitness {
 public:
  static constexpr std::int32_t kFree = -1;

  // `fixed` is for each row its column or kFree; no column may be in it twice. `table` must outlive
  // this.
  AssignmentFitness(const CostTable& table, std::vector<std::int32_t> fixed, std::uint64_t seed);

  // What forces the fixed rows.
  String Mask() const;
  const Assignment& Decode(StringView chromosome);
  // No assignment costs less; the fitness is the cost above it.
  double LowestConceivable() const { return lowest_conceivable_; }

  double Fitness(StringView chromosome) override;
  std::int32_t ChromoSize() override;
  std::int32_t GeneSize() override { return gene_size_; }
  std::int32_t MaxGeneSize() override;
  void MutateGene(std::int32_t index, String& gene) override;

 private:
  bool Take(std::size_t row, std::uint32_t column);
  std::uint32_t CheapestFree(std::size_t row) const;

  const CostTable& table_;
  std::vector<std::int32_t> fixed_;
  RandomStream random_;
  std::int32_t gene_size_ = 1;
  double lowest_conceivable_ = 0;
  Assignment assignment_;             // scratch
  std::vector<std::uint8_t> taken_;   // scratch: by column
  std::vector<std::size_t> waiting_;  // scratch: rows without a column
};

}  // namespace zentavo::tool
