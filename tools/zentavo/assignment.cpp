#include "tools/zentavo/assignment.h"

#include <algorithm>
#include <bit>
#include <optional>

#include "tools/zentavo/csv.h"
#include "tools/zentavo/csv_table.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

struct Record {
  std::vector<std::string> cells;
  std::int64_t line;
};

std::optional<double> NumberOf(const std::string& cell) {
  return TryStrToFloat(std::string_view(cell), '.');
}

bool IsHeader(const std::vector<std::string>& cells) {
  const bool named = std::any_of(cells.begin() + 1, cells.end(),
                                 [](const std::string& cell) { return !NumberOf(cell); });
  const bool single_name = cells.size() == 1 && !NumberOf(cells[0]);
  return named || single_name || cells[0].empty();
}

double CostIn(const Record& record, std::size_t place) {
  const std::optional<double> cost = NumberOf(record.cells[place]);
  if (cost) return *cost;
  throw CsvError(record.line, u"'" + Excerpt(FromUtf8(record.cells[place])) + u"' is not a number");
}

std::vector<std::string> Numbers(std::size_t count) {
  std::vector<std::string> numbers;
  for (std::size_t i = 0; i < count; ++i) numbers.push_back(std::to_string(i));
  return numbers;
}

void CheckSize(const CostTable& table) {
  const std::size_t rows = table.costs.size();
  const std::size_t columns = rows == 0 ? 0 : table.costs.front().size();
  if (columns == 0) throw Exception(u"No costs");
  if (rows > columns) {
    throw Exception(IntToStr(static_cast<std::int64_t>(rows)) + u" rows cannot have a column each" +
                    u" of " + IntToStr(static_cast<std::int64_t>(columns)));
  }
}

}  // namespace

CostTable ReadCosts(const std::string& file) {
  std::vector<Record> records;
  ForEachRecord(file, [&](std::span<const std::string_view> fields, std::int64_t line) {
    records.push_back({{fields.begin(), fields.end()}, line});
  });
  if (records.empty()) throw Exception(u"No costs");
  const std::size_t first_row = IsHeader(records.front().cells) ? 1 : 0;
  const auto begin = records.begin() + static_cast<std::ptrdiff_t>(first_row);
  const bool has_row_names = std::any_of(
      begin, records.end(), [](const Record& record) { return !NumberOf(record.cells[0]); });
  const std::size_t first_column = has_row_names ? 1 : 0;

  CostTable table;
  for (auto record = begin; record != records.end(); ++record) {
    table.costs.emplace_back();
    for (std::size_t place = first_column; place < record->cells.size(); ++place) {
      table.costs.back().push_back(CostIn(*record, place));
    }
    if (has_row_names) table.row_names.push_back(record->cells[0]);
  }
  CheckSize(table);
  if (!has_row_names) table.row_names = Numbers(table.costs.size());
  table.column_names = Numbers(table.costs.front().size());
  if (first_row == 1) {
    std::copy(records[0].cells.begin() + static_cast<std::ptrdiff_t>(first_column),
              records[0].cells.end(), table.column_names.begin());
  }
  return table;
}

double CostOf(const CostTable& table, const Assignment& assignment) {
  double cost = 0;
  for (std::size_t row = 0; row < assignment.size(); ++row) {
    cost += table.costs[row][assignment[row]];
  }
  return cost;
}

AssignmentFitness::AssignmentFitness(const CostTable& table, std::vector<std::int32_t> fixed,
                                     std::uint64_t seed)
    : table_(table),
      fixed_(std::move(fixed)),
      random_(seed),
      assignment_(table.costs.size()),
      taken_(table.column_names.size()) {
  gene_size_ =
      std::max(static_cast<std::int32_t>(std::bit_width(table.column_names.size() - 1)), 1);
  for (std::size_t row = 0; row < fixed_.size(); ++row) {
    const std::vector<double>& costs = table.costs[row];
    lowest_conceivable_ += fixed_[row] == kFree ? *std::min_element(costs.begin(), costs.end())
                                                : costs[static_cast<std::size_t>(fixed_[row])];
  }
}

String AssignmentFitness::Mask() const {
  const auto size = static_cast<std::size_t>(gene_size_);
  String mask;
  for (const std::int32_t column : fixed_) {
    if (column == kFree) {
      mask.append(size, u'X');
      continue;
    }
    for (std::size_t bit = size; bit-- > 0;) mask += (column >> bit & 1) != 0 ? u'1' : u'0';
  }
  return mask;
}

const Assignment& AssignmentFitness::Decode(StringView chromosome) {
  const auto size = static_cast<std::size_t>(gene_size_);
  std::fill(taken_.begin(), taken_.end(), std::uint8_t{0});
  waiting_.clear();
  for (std::size_t row = 0; row < fixed_.size(); ++row) {
    if (fixed_[row] != kFree) Take(row, static_cast<std::uint32_t>(fixed_[row]));
  }
  for (std::size_t row = 0; row < fixed_.size(); ++row) {
    if (fixed_[row] != kFree) continue;
    std::uint32_t column = 0;
    for (const char16_t digit : chromosome.substr(row * size, size)) {
      column = column * 2 + (digit == u'1' ? 1 : 0);
    }
    if (!Take(row, column)) waiting_.push_back(row);
  }
  for (const std::size_t row : waiting_) Take(row, CheapestFree(row));
  return assignment_;
}

// False when the column is taken or is none.
bool AssignmentFitness::Take(std::size_t row, std::uint32_t column) {
  if (column >= taken_.size() || taken_[column] != 0) return false;
  taken_[column] = 1;
  assignment_[row] = column;
  return true;
}

std::uint32_t AssignmentFitness::CheapestFree(std::size_t row) const {
  const std::vector<double>& costs = table_.costs[row];
  std::size_t cheapest = costs.size();
  for (std::size_t column = 0; column < costs.size(); ++column) {
    if (taken_[column] != 0) continue;
    if (cheapest == costs.size() || costs[column] < costs[cheapest]) cheapest = column;
  }
  return static_cast<std::uint32_t>(cheapest);
}

double AssignmentFitness::Fitness(StringView chromosome) {
  return CostOf(table_, Decode(chromosome)) - lowest_conceivable_;
}

std::int32_t AssignmentFitness::ChromoSize() {
  return static_cast<std::int32_t>(fixed_.size()) * gene_size_;
}

std::int32_t AssignmentFitness::MaxGeneSize() {
  return static_cast<std::int32_t>(taken_.size()) - 1;
}

void AssignmentFitness::MutateGene(std::int32_t, String& gene) {
  std::uint32_t column = random_.Below(static_cast<std::uint32_t>(taken_.size()));
  for (auto digit = gene.rbegin(); digit != gene.rend(); ++digit, column >>= 1) {
    *digit = static_cast<char16_t>(u'0' + (column & 1));
  }
}

}  // namespace zentavo::tool
