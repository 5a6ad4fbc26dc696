#include "zentavo/optimise/match_tables.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/optimise/agreement.h"

namespace zentavo::optimise_internal {

namespace {

constexpr unsigned BitOf(VariantKind kind) {
  return 1U << static_cast<unsigned>(kind);
}
constexpr unsigned kTexts = BitOf(VariantKind::kString);
constexpr unsigned kBooleans = BitOf(VariantKind::kBoolean);
constexpr unsigned kCurrencies = BitOf(VariantKind::kCurrency);
constexpr unsigned kFloats =
    BitOf(VariantKind::kSingle) | BitOf(VariantKind::kDouble) | kCurrencies;
// They compare as the numbers they are; a currency beside a double does not always.
constexpr unsigned kNumbers = BitOf(VariantKind::kInteger) | BitOf(VariantKind::kInt64) |
                              BitOf(VariantKind::kSingle) | BitOf(VariantKind::kDouble) |
                              BitOf(VariantKind::kDate);

// Beside texts of which none reads as a number they equal none of them.
constexpr unsigned kPlainNumbers = kNumbers & ~BitOf(VariantKind::kDate);

constexpr bool AllOf(unsigned kinds, unsigned allowed) {
  return (kinds & ~allowed) == 0;
}

// How many rows ahead their cells are asked of the memory, where they lie scattered.
constexpr std::size_t kRowsAhead = 16;

// The kinds of the values in each column.
std::vector<unsigned> KindsIn(Rows rows, std::size_t columns) {
  std::vector<unsigned> kinds(columns);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    PrefetchCells(rows, i + kRowsAhead, columns);
    for (std::size_t place = 0; place < columns; ++place) {
      if (const Variant* cell = CellOf(rows[i], place)) kinds[place] |= BitOf(cell->Kind());
    }
  }
  return kinds;
}

bool AnyTextReadsAsNumber(Rows rows, std::size_t place) {
  return std::any_of(rows.begin(), rows.end(), [&](const Row& row) {
    const Variant* cell = CellOf(row, place);
    return cell != nullptr && cell->IsString() &&
           TryStrToFloat(cell->StringValue(), u'.').has_value();
  });
}

bool GridHolds(const Grid& grid, Rows rows, std::size_t place) {
  for (const Row& row : rows) {
    const Variant* cell = CellOf(row, place);
    if (cell != nullptr && !grid.Holds(VarToDouble(*cell))) return false;
  }
  return true;
}

}  // namespace

MatchTables::MatchTables(Rows left, Rows right, std::span<const std::int32_t> weights,
                         double tolerance, LookCounter& looks)
    : left_(left),
      right_(right),
      tolerance_(tolerance),
      left_sets_(left.size()),
      right_sets_(right.size()) {
  AddColumns(weights);
  left_codes_.assign(left.size() * left_width_, kNoCode);
  right_codes_.assign(right.size() * right_width_, kNoRightCode);
  Encode(looks);
  for (std::size_t column = 0; column < columns_.size(); ++column) {
    if (columns_[column].comparison == Comparison::kCells) MarkCells(column);
  }
}

void MatchTables::AddColumns(std::span<const std::int32_t> weights) {
  const std::vector<unsigned> left_kinds = KindsIn(left_, weights.size());
  const std::vector<unsigned> right_kinds = KindsIn(right_, weights.size());
  for (std::size_t place = 0; place < weights.size(); ++place) {
    if (weights[place] == 0) continue;
    const Comparison comparison = ComparisonOf(place, left_kinds[place], right_kinds[place]);
    const bool has_texts = ((left_kinds[place] | right_kinds[place]) & kTexts) != 0;
    columns_.push_back({place, weights[place], comparison, 0, has_texts});
    all_by_code_ = all_by_code_ && comparison == Comparison::kEqualCodes;
  }
  left_width_ = right_width_ = columns_.size();
  for (MatchColumn& column : columns_) {
    if (column.comparison == Comparison::kNearCodes) column.second_code = left_width_++;
  }
}

Comparison MatchTables::ComparisonOf(std::size_t place, unsigned left_kinds,
                                     unsigned right_kinds) const {
  const unsigned kinds = left_kinds | right_kinds;
  const bool near = tolerance_ > 0 && (left_kinds & kFloats) != 0 && (right_kinds & kFloats) != 0;
  if (near && AllOf(kinds, kNumbers | kCurrencies)) {
    const Grid grid(tolerance_);
    const bool held =
        grid.IsUsable() && GridHolds(grid, left_, place) && GridHolds(grid, right_, place);
    return held ? Comparison::kNearCodes : Comparison::kCells;
  }
  if (near) return Comparison::kCells;
  for (const unsigned sort : {kTexts, kNumbers, kCurrencies, kBooleans}) {
    if (AllOf(kinds, sort)) return Comparison::kEqualCodes;
  }
  if (AllOf(kinds, kTexts | kPlainNumbers) && !AnyTextReadsAsNumber(left_, place) &&
      !AnyTextReadsAsNumber(right_, place)) {
    return Comparison::kEqualCodes;
  }
  return Comparison::kCells;
}

std::vector<CodePlace> MatchTables::RightPlaces() const {
  std::vector<CodePlace> places;
  for (std::size_t column = 0; column < columns_.size(); ++column) {
    const MatchColumn& one = columns_[column];
    if (one.comparison == Comparison::kCells) continue;
    const bool near = one.comparison == Comparison::kNearCodes;
    places.push_back(
        {one.place, column, column, near ? KeySort::kStretch : KeySort::kValue, one.has_texts});
  }
  return places;
}

std::vector<CodePlace> MatchTables::LeftPlaces() const {
  std::vector<CodePlace> places = RightPlaces();
  for (std::size_t i = places.size(); i-- > 0;) {
    if (places[i].sort != KeySort::kStretch) continue;
    CodePlace upper = places[i];
    places[i].sort = KeySort::kLowerStretch;
    upper.sort = KeySort::kUpperStretch;
    upper.code = columns_[upper.column].second_code;
    places.push_back(upper);
  }
  return places;
}

void MatchTables::Encode(LookCounter& looks) {
  std::vector<ValueCodes> codes(columns_.size(), ValueCodes(right_.size()));
  EncodeRight(codes, looks);
  MarkMet(EncodeLeft(codes, looks));
}

void MatchTables::EncodeRight(std::span<ValueCodes> codes, LookCounter& looks) {
  const std::vector<CodePlace> places = RightPlaces();
  for (KeyWalk walk(right_, places, codes, Grid(tolerance_)); walk.Next();) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      ValueCodes& column_codes = codes[places[i].column];
      for (const KeyedRow& keyed : walk.Keys(i)) {
        right_codes_[keyed.row * right_width_ + places[i].code] = column_codes.Insert(keyed.key);
      }
    }
    looks.Count(static_cast<std::int64_t>(walk.RowCount()));
  }
}

MatchTables::MetCodes MatchTables::EncodeLeft(std::span<const ValueCodes> codes,
                                              LookCounter& looks) {
  MetCodes met;
  for (const ValueCodes& column_codes : codes) met.emplace_back(column_codes.Count());
  const std::vector<CodePlace> places = LeftPlaces();
  for (KeyWalk walk(left_, places, codes, Grid(tolerance_)); walk.Next();) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      const std::size_t column = places[i].column;
      for (const KeyedRow& keyed : walk.Keys(i)) {
        const Code code = codes[column].Find(keyed.key);
        if (code == kNoCode) continue;
        left_codes_[keyed.row * left_width_ + places[i].code] = code;
        left_sets_[keyed.row] |= ColumnSet{1} << column;
        met[column][static_cast<std::size_t>(code)] = true;
      }
    }
    looks.Count(static_cast<std::int64_t>(walk.RowCount()));
  }
  return met;
}

// Adds to each right row the columns in which some left row has its value.
void MatchTables::MarkMet(const MetCodes& met) {
  for (std::size_t i = 0; i < right_.size(); ++i) {
    for (std::size_t column = 0; column < right_width_; ++column) {
      const Code code = right_codes_[i * right_width_ + column];
      if (code >= 0 && met[column][static_cast<std::size_t>(code)]) {
        right_sets_[i] |= ColumnSet{1} << column;
      }
    }
  }
}

void MatchTables::MarkCells(std::size_t column) {
  const std::size_t place = columns_[column].place;
  const ColumnSet bit = ColumnSet{1} << column;
  for (std::size_t i = 0; i < left_.size(); ++i) {
    if (CellOf(left_[i], place) != nullptr) left_sets_[i] |= bit;
  }
  for (std::size_t i = 0; i < right_.size(); ++i) {
    if (CellOf(right_[i], place) != nullptr) right_sets_[i] |= bit;
  }
}

std::int32_t MatchTables::CalcScore(RowIndex left, RowIndex right) const {
  const Code* const left_codes = LeftCodes(left);
  const Code* const right_codes = RightCodes(right);
  std::uint32_t score = 0;
  for (std::size_t column = 0; column < columns_.size(); ++column) {
    const bool agree =
        all_by_code_ ? left_codes[column] == right_codes[column] : Agree(column, left, right);
    score += agree ? static_cast<std::uint32_t>(columns_[column].weight) : 0;
  }
  return static_cast<std::int32_t>(score);
}

bool MatchTables::Agree(std::size_t column, RowIndex left, RowIndex right) const {
  if (((LeftColumns(left) & RightColumns(right)) >> column & 1) == 0) return false;
  const MatchColumn& compared = columns_[column];
  const Code* const left_codes = LeftCodes(left);
  const Code code = RightCodes(right)[column];
  if (compared.comparison == Comparison::kEqualCodes) return left_codes[column] == code;
  if (compared.comparison == Comparison::kNearCodes && left_codes[column] != code &&
      left_codes[compared.second_code] != code) {
    return false;
  }
  return CellsAgree(left_[At(left)][compared.place], right_[At(right)][compared.place], tolerance_);
}

}  // namespace zentavo::optimise_internal
