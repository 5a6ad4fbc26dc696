#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tools/zentavo/assignment.h"
#include "tools/zentavo/command.h"
#include "tools/zentavo/convergence.h"
#include "tools/zentavo/csv.h"
#include "tools/zentavo/csv_table.h"
#include "tools/zentavo/files.h"
#include "tools/zentavo/progress.h"
#include "zentavo/framework/date_time.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

// A search that finds nothing better for so long is at its end.
constexpr std::int32_t kGenerationsWithoutGain = 5000;

struct AssignOptions {
  std::string costs;
  double seconds = 10;
  std::uint64_t seed = 0;
  bool has_seed = false;
  std::string mask;
  std::string report;
};

std::size_t ColumnOf(const CostTable& table, const std::string& item) {
  const auto found = std::find(table.column_names.begin(), table.column_names.end(), item);
  if (found == table.column_names.end()) {
    throw Exception(u"No column '" + Excerpt(FromUtf8(item)) + u"' among the costs");
  }
  return static_cast<std::size_t>(found - table.column_names.begin());
}

// The column of each row that the mask fixes.
std::vector<std::int32_t> FixedColumns(const CostTable& table, const std::string& mask) {
  std::vector<std::int32_t> fixed(table.costs.size(), AssignmentFitness::kFree);
  const std::vector<std::string> items = SplitItems(mask);
  if (items.size() > fixed.size()) {
    throw Exception(u"The mask has " + IntToStr(static_cast<std::int64_t>(items.size())) +
                    u" items for " + IntToStr(static_cast<std::int64_t>(fixed.size())) + u" rows");
  }
  for (std::size_t row = 0; row < items.size(); ++row) {
    if (items[row].empty() || items[row] == "X") continue;
    const auto column = static_cast<std::int32_t>(ColumnOf(table, items[row]));
    if (std::find(fixed.begin(), fixed.end(), column) != fixed.end()) {
      throw Exception(u"Column '" + Excerpt(FromUtf8(items[row])) + u"' is twice in the mask");
    }
    fixed[row] = column;
  }
  return fixed;
}

void PrintAssignment(const CostTable& table, const Assignment& assignment, const ReportedRun& run) {
  OutputFile output("-");
  CsvWriter writer([&](std::string_view block) { output.Write(block); });
  for (const std::string_view title : {"row", "column", "cost"}) writer.Field(title);
  writer.EndRecord();
  const auto number = [](double value) {
    std::string text;
    AppendFloat(text, value);
    return text;
  };
  for (std::size_t row = 0; row < assignment.size(); ++row) {
    writer.Field(table.row_names[row]);
    writer.Field(table.column_names[assignment[row]]);
    writer.Field(number(table.costs[row][assignment[row]]));
    writer.EndRecord();
  }
  writer.Flush();
  output.Write("\ncost " + number(run.cost) + "\ngenerations " + std::to_string(run.generations) +
               "\n");
  output.Commit();
}

// Follows a search: ends it when it gains nothing any more, and keeps its course.
class Watch {
 public:
  bool Look(const TGeneticProgress& now, double offset) {
    progress_.Advance();
    course_.Add({now.Generation, now.Best + offset, now.Average + offset});
    if (now.Generation == 0 || now.Best < best_) {
      best_ = now.Best;
      best_since_ = now.Generation;
    }
    return now.Generation - best_since_ < kGenerationsWithoutGain;
  }
  const Convergence& Course() const { return course_; }

 private:
  Progress progress_{"generations"};
  Convergence course_;
  double best_ = 0;
  std::int32_t best_since_ = 0;
};

void Run(const AssignOptions& options) {
  constexpr double kSecondsPerDay = 86400;
  const CostTable table = ReadCosts(options.costs);
  const auto fitness =
      std::make_shared<AssignmentFitness>(table, FixedColumns(table, options.mask), options.seed);
  Watch watch;
  TGeneticAlgorithm search;
  if (options.has_seed) search.SetSeed(options.seed);
  search.SetOnProgress(
      [&](const TGeneticProgress& now) { return watch.Look(now, fitness->LowestConceivable()); });
  const auto elastic_ms = static_cast<std::int32_t>(options.seconds * 1000);
  search.Execute(fitness, Now() + options.seconds / kSecondsPerDay, elastic_ms, fitness->Mask());
  if (search.HasError()) throw Exception(search.ErrorMessage());

  const Assignment assignment = fitness->Decode(search.FSolution);
  const ReportedRun run{CostOf(table, assignment), search.Generations()};
  if (!options.report.empty()) {
    OutputFile page(options.report);
    page.Write(ConvergencePage(table, assignment, run, watch.Course().Points()));
    page.Commit();
  }
  PrintAssignment(table, assignment, run);
}

constexpr const char* kFooter =
    "COSTS holds a number for each row and column, and may hold names: of the columns in the "
    "first\n"
    "line, of the rows in the first column; without names they are numbered from 0. Each row gets\n"
    "one column and no column has two rows. The search ends when it cannot get better, after 5000\n"
    "generations without gain, or when its time is over. Runs with the same seed that do not end "
    "by\n"
    "time are the same.";

}  // namespace

void AddOptimiseCommand(CLI::App& program) {
  constexpr double kLongestSeconds = 1'000'000;
  auto options = std::make_shared<AssignOptions>();
  CLI::App& optimise =
      *program.add_subcommand("optimise", "Solve a planning problem with the genetic algorithm");
  optimise.require_subcommand(1);
  CLI::App& command =
      *optimise.add_subcommand("assign", "Give each row one column at the lowest total cost")
           ->footer(kFooter);
  command.add_option("COSTS", options->costs, "The table of costs (CSV)")->required();
  command.add_option("--seconds", options->seconds, "How long to search at most; 10 otherwise")
      ->check(CLI::Range(0.0, kLongestSeconds));
  CLI::Option* seed =
      command.add_option("--seed", options->seed, "A number that makes the run repeatable");
  command.add_option("--mask", options->mask,
                     "A,X,B,...: the column of each row, X for a row that is free");
  command.add_option("--report", options->report, "The HTML page to write about the run");
  command.callback([options, seed] {
    options->has_seed = seed->count() > 0;
    Run(*options);
  });
}

}  // namespace zentavo::tool
