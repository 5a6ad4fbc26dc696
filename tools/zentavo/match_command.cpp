#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zentavo/command.h"
#include "tools/zentavo/csv.h"
#include "tools/zentavo/csv_table.h"
#include "tools/zentavo/files.h"
#include "tools/zentavo/progress.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"
#include "zentavo/optimise/scoring_algorithm.h"

namespace zentavo::tool {

namespace {

struct MatchOptions {
  std::string left;
  std::string right;
  std::string columns;
  std::string weights;
  std::string tolerance = "0";
};

bool IsWholeNumber(std::string_view text) {
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  return !text.empty() && std::all_of(text.begin(), text.end(),
                                      [](char byte) { return byte >= '0' && byte <= '9'; });
}

Variant CellValue(std::string_view text) {
  if (text.empty()) return {};
  if (IsWholeNumber(text)) {
    const std::optional<std::int64_t> whole = TryStrToInt64(FromUtf8(text));
    if (whole) return *whole;
  } else if (text.find('.') != std::string_view::npos) {
    const std::optional<double> number = TryStrToFloat(text, '.');
    if (number) return *number;
  }
  return FromUtf8(text);
}

std::vector<TScoreRow> ReadRows(const std::string& file, const std::vector<std::string>& columns) {
  std::vector<std::size_t> places;
  std::vector<TScoreRow> rows;
  ForEachRecord(file, [&](std::span<const std::string_view> fields, std::int64_t) {
    if (places.empty()) {
      for (const std::string& column : columns) {
        places.push_back(PlaceOfColumn(fields, FromUtf8(column), file));
      }
      return;
    }
    TScoreRow row;
    row.reserve(places.size());
    for (const std::size_t place : places) row.push_back(CellValue(fields[place]));
    rows.push_back(std::move(row));
  });
  if (places.empty()) throw CsvError(1, u"No header");
  return rows;
}

std::vector<std::int32_t> ReadWeights(const std::string& argument) {
  std::vector<std::int32_t> weights;
  for (const std::string& item : SplitItems(argument)) {
    const String text = FromUtf8(item);
    const std::optional<std::int32_t> weight = TryStrToInt(text);
    if (!weight) throw UsageError(u"'" + Excerpt(text) + u"' is not a whole number");
    weights.push_back(*weight);
  }
  return weights;
}

void CheckCounts(std::size_t columns, std::size_t weights) {
  if (columns != weights) {
    throw UsageError(IntToStr(static_cast<std::int64_t>(columns)) + u" columns but " +
                     IntToStr(static_cast<std::int64_t>(weights)) + u" weights");
  }
  if (columns == 0) throw UsageError(u"No columns");
  if (columns > static_cast<std::size_t>(TScoringAlgorithm::kMaxColumns)) {
    throw UsageError(u"More than " + IntToStr(TScoringAlgorithm::kMaxColumns) + u" columns");
  }
}

TScoringAlgorithm::Matches FindMatches(std::span<const TScoreRow> left,
                                       std::span<const TScoreRow> right,
                                       std::span<const std::int32_t> weights, double tolerance) {
  Progress progress("rows looked at");
  TScoringAlgorithm scoring;
  scoring.SetOnProgress([&progress](std::int64_t looks) { progress.AdvanceTo(looks); });
  return scoring.Execute(left, right, weights, tolerance);
}

void WriteMatches(const TScoringAlgorithm::Matches& matches) {
  OutputFile output("-");
  CsvWriter writer([&](std::string_view block) { output.Write(block); });
  for (const std::string_view title : {"left", "right", "score"}) writer.Field(title);
  writer.EndRecord();
  for (std::size_t k = 0; k < matches[0].size(); ++k) {
    for (const std::vector<std::int32_t>& numbers : matches) {
      writer.Field(std::to_string(numbers[k]));
    }
    writer.EndRecord();
  }
  writer.Flush();
  output.Commit();
}

void Run(const MatchOptions& options) {
  const std::vector<std::string> columns = SplitItems(options.columns);
  const std::vector<std::int32_t> weights = ReadWeights(options.weights);
  CheckCounts(columns.size(), weights.size());
  const double tolerance = ReadNumberArgument(options.tolerance);
  const std::vector<TScoreRow> left = ReadRows(options.left, columns);
  const std::vector<TScoreRow> right = ReadRows(options.right, columns);
  // Without right rows the algorithm reports a row that is not there.
  WriteMatches(right.empty() ? TScoringAlgorithm::Matches()
                             : FindMatches(left, right, weights, tolerance));
}

constexpr const char* kFooter =
    "Prints left,right,score: the rows' numbers from 0, the header not counted, the best pairs\n"
    "first. A column adds its weight to a pair's score when its cells agree. Cells with a whole\n"
    "number compare as integers, numbers with a point as floating-point, all others as text; an\n"
    "empty left cell agrees with nothing. Each right row is used once; at the score 0 the left "
    "rows\n"
    "that found no partner take the right rows that are left over.";

}  // namespace

void AddMatchCommand(CLI::App& program) {
  auto options = std::make_shared<MatchOptions>();
  CLI::App& command =
      *program.add_subcommand("match", "Pair the rows of two CSV tables")->footer(kFooter);
  command.add_option("LEFT", options->left, "The table to find partners for (CSV)")->required();
  command.add_option("RIGHT", options->right, "The table to find them in (CSV)")->required();
  command.add_option("--columns", options->columns, "A,B,...: the columns to compare")->required();
  command.add_option("--weights", options->weights, "5,3,...: a whole number for each column")
      ->required();
  command.add_option("--tolerance", options->tolerance,
                     "How far floating-point cells that agree may be apart");
  command.callback([options] { Run(*options); });
}

}  // namespace zentavo::tool
