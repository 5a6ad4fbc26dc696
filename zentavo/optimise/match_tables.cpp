#include "zentavo/optimise/match_tables.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "zentavo/framework/number_text.h"
#include "zentavo/framework/variant_convert.h"
#include "zentavo/optimise/agreement.h"

namespace zentavo::optimise_internal {

namespace {

// The cell of a row, null when it is empty or missing.
const Variant* CellOf(const Row& row, std::size_t place) {
  if (place >= row.size() || IsEmptyCell(row[place])) return nullptr;
  return &row[place];
}

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

void PrefetchRow(Rows rows, std::size_t row, std::size_t place) {
  if (row < rows.size()) ValueCodes::Prefetch(rows[row].data() + place);
}

// The kinds of the values in each column.
std::vector<unsigned> KindsIn(Rows rows, std::size_t columns) {
  std::vector<unsigned> kinds(columns);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    PrefetchRow(rows, i + kRowsAhead, 0);
    for (std::size_t place = 0; place < columns; ++place) {
      if (const Variant* cell = CellOf(rows[i], place)) kinds[place] |= BitOf(cell->Kind());
    }
  }
  return kinds;
}

// The key of a cell in a column of one sort; false for NaN, which equals nothing.
bool KeyOf(const Variant& cell, ValueKey& key) {
  switch (cell.Kind()) {
    case VariantKind::kString: key = ValueKey::OfText(cell.StringValue()); return true;
    case VariantKind::kCurrency: key = ValueKey::OfInteger(cell.CurrencyUnitsValue()); return true;
    case VariantKind::kBoolean: key = ValueKey::OfInteger(cell.BooleanValue() ? 1 : 0); return true;
    case VariantKind::kInteger:
    case VariantKind::kInt64: key = ValueKey::OfInteger(cell.Int64Value()); return true;
    default: key = ValueKey::OfReal(cell.DoubleValue()); return !std::isnan(cell.DoubleValue());
  }
}

bool AnyTextReadsAsNumber(Rows rows, std::size_t place) {
  return std::any_of(rows.begin(), rows.end(), [&](const Row& row) {
    const Variant* cell = CellOf(row, place);
    return cell != nullptr && cell->IsString() &&
           TryStrToFloat(cell->StringValue(), u'.').has_value();
  });
}

// Stretches of the number line, so wide that what lies within the tolerance of a number, rounding
// included, is in at most two of them.
class Grid {
 public:
  explicit Grid(double tolerance) : width_(4 * tolerance), reach_(1.25 * tolerance) {}

  bool IsUsable() const { return std::isfinite(width_); }
  // Far from 0 the stretches get lost in rounding.
  bool Holds(double value) const { return std::fabs(value / width_) < 0x1p50; }
  ValueKey StretchOf(double value) const { return ValueKey::OfReal(std::floor(value / width_)); }
  ValueKey LowerStretch(double value) const { return StretchOf(value - reach_); }
  ValueKey UpperStretch(double value) const { return StretchOf(value + reach_); }

 private:
  double width_;
  double reach_;
};

// Calls take(row, key) for the column's cells that have a key. In blocks, so that the memory brings
// what many rows need at the same time.
template <typename CellKey, typename Take>
void ForEachKey(Rows rows, std::size_t place, const ValueCodes& codes, CellKey cell_key,
                Take take) {
  constexpr std::size_t kBlock = 32;
  std::array<const Variant*, kBlock> cells;
  std::array<ValueKey, kBlock> keys;
  std::array<std::size_t, kBlock> places;
  for (std::size_t begin = 0; begin < rows.size(); begin += kBlock) {
    const std::size_t end = std::min(begin + kBlock, rows.size());
    for (std::size_t i = begin; i < end; ++i) {
      PrefetchRow(rows, i + kBlock, place);
      const Variant* cell = cells[i - begin] = CellOf(rows[i], place);
      if (cell != nullptr && cell->IsString()) ValueCodes::Prefetch(cell->StringValue().data());
    }
    std::size_t count = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const Variant* cell = cells[i - begin];
      if (cell == nullptr || !cell_key(*cell, keys[count])) continue;
      codes.PrefetchSlot(keys[count]);
      places[count++] = i;
    }
    for (std::size_t k = 0; k < count; ++k) codes.PrefetchKept(keys[k]);
    for (std::size_t k = 0; k < count; ++k) take(places[k], keys[k]);
  }
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
                         double tolerance)
    : left_(left),
      right_(right),
      tolerance_(tolerance),
      left_sets_(left.size()),
      right_sets_(right.size()) {
  AddColumns(weights);
  left_codes_.assign(left.size() * left_width_, kNoCode);
  right_codes_.assign(right.size() * right_width_, kNoRightCode);
  ValueCodes codes;
  for (std::size_t column = 0; column < columns_.size(); ++column) {
    if (columns_[column].comparison == Comparison::kCells) {
      MarkCells(column);
    } else {
      codes.Reset(right.size());
      Encode(column, codes);
    }
  }
}

void MatchTables::AddColumns(std::span<const std::int32_t> weights) {
  const std::vector<unsigned> left_kinds = KindsIn(left_, weights.size());
  const std::vector<unsigned> right_kinds = KindsIn(right_, weights.size());
  for (std::size_t place = 0; place < weights.size(); ++place) {
    if (weights[place] == 0) continue;
    const Comparison comparison = ComparisonOf(place, left_kinds[place], right_kinds[place]);
    columns_.push_back({place, weights[place], comparison, 0});
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

void MatchTables::Encode(std::size_t column, ValueCodes& codes) {
  const MatchColumn& encoded = columns_[column];
  const bool near = encoded.comparison == Comparison::kNearCodes;
  const Grid grid(tolerance_);
  const auto stretch = [&](const Variant& cell, ValueKey& key) {
    key = grid.StretchOf(VarToDouble(cell));
    return true;
  };
  near ? EncodeRight(column, codes, stretch) : EncodeRight(column, codes, KeyOf);

  std::vector<bool> met(codes.Count());
  const auto take = [&](std::size_t row, std::size_t code_place, const ValueKey& key) {
    const Code code = codes.Find(key);
    if (code == kNoCode) return;
    left_codes_[row * left_width_ + code_place] = code;
    left_sets_[row] |= ColumnSet{1} << column;
    met[static_cast<std::size_t>(code)] = true;
  };
  if (near) {
    for (std::size_t row = 0; row < left_.size(); ++row) {
      const Variant* cell = CellOf(left_[row], encoded.place);
      if (cell == nullptr) continue;
      take(row, column, grid.LowerStretch(VarToDouble(*cell)));
      take(row, encoded.second_code, grid.UpperStretch(VarToDouble(*cell)));
    }
  } else {
    ForEachKey(left_, encoded.place, codes, KeyOf,
               [&](std::size_t row, const ValueKey& key) { take(row, column, key); });
  }
  MarkMet(column, met);
}

template <typename CellKey>
void MatchTables::EncodeRight(std::size_t column, ValueCodes& codes, CellKey cell_key) {
  ForEachKey(right_, columns_[column].place, codes, cell_key,
             [&](std::size_t row, const ValueKey& key) {
               right_codes_[row * right_width_ + column] = codes.Insert(key);
             });
}

// Adds the column to the right rows whose value some left row may agree with.
void MatchTables::MarkMet(std::size_t column, const std::vector<bool>& met) {
  for (std::size_t i = 0; i < right_.size(); ++i) {
    const Code code = right_codes_[i * right_width_ + column];
    if (code >= 0 && met[static_cast<std::size_t>(code)]) {
      right_sets_[i] |= ColumnSet{1} << column;
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

std::int32_t MatchTables::Score(RowIndex left, RowIndex right) const {
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
