// Formulas over the rows of a table, worked through one by one.
//
// A column is a variable, by its title: the signs that cannot stand in a name read as '_', and a
// title that begins with a digit or a point, or is the name of a built-in, gets a '_' in front. Of
// two columns of one name the first counts. A cell is a number when its text is one, else a text;
// so is a cell that a formula has set.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zentavo/csv.h"
#include "tools/zentavo/formula_values.h"
#include "zentavo/framework/text.h"

namespace zentavo::tool {

// The name by which formulas reach the column; empty for an empty title.
String ColumnVariable(StringView title);

// A column to be added, or replaced where the table has one of that title.
struct ColumnFormula {
  std::string title;
  String formula;
};

enum class RowFailure {
  kEndsRun,      // raises "line 3, Net: Number Expected"
  kLeavesEmpty,  // leaves the cell empty and goes on
};

struct TableOutcome {
  std::int64_t failures = 0;  // cells left empty
  String first_failure;
};

// Writes the table that `reader` gives with the columns of `formulas`, each of which sees those
// before it. Fields that no formula sets stay as they were written; records end as the first does.
// Raises CsvError, also "5 fields instead of 4" and "No header", and Exception "'Rate' is both a
// column and a variable".
TableOutcome EvaluateTable(CsvReader& reader, CsvWriter& writer,
                           const std::vector<ColumnFormula>& formulas, NamedValues& variables,
                           RowFailure on_failure);

}  // namespace zentavo::tool
