// Pairs the lines of a bank statement with open invoices: the document number counts most, then the
// amount, which may differ by a cent, then the customer.
#include <cstdlib>
#include <iostream>
#include <vector>

#include "zentavo/optimise/scoring_algorithm.h"

int main() {
  const std::vector<zentavo::TScoreRow> statement = {
      {u"INV-1001", 250.00, u"Olive Press"},
      {u"", 99.90, u"Harbour Cafe"},  // no document number given
      {u"INV-1003", 12.51, u"Mill"},
      {u"INV-7777", 1.00, u"Nobody"},
  };
  const std::vector<zentavo::TScoreRow> invoices = {
      {u"INV-1003", 12.50, u"Mill"},
      {u"INV-1002", 99.90, u"Harbour Cafe"},
      {u"INV-1001", 250.00, u"Olive Press"},
  };
  const std::vector<std::int32_t> weights = {4, 2, 1};

  zentavo::TScoringAlgorithm scoring;
  const auto [lines, found, scores] = scoring.Execute(statement, invoices, weights, 0.011);
  for (std::size_t k = 0; k < lines.size(); ++k) {
    std::cout << "line " << lines[k] << " is invoice " << found[k] << ", score " << scores[k]
              << "\n";
  }
  const bool as_expected = lines == std::vector<std::int32_t>{0, 2, 1} &&
                           found == std::vector<std::int32_t>{2, 0, 1} &&
                           scores == std::vector<std::int32_t>{7, 7, 3};
  return as_expected ? EXIT_SUCCESS : EXIT_FAILURE;
}
