#include "zentavo/optimise/cell_keys.h"

#include <algorithm>
#include <cmath>

#include "zentavo/framework/variant_convert.h"

namespace zentavo::optimise_internal {

namespace {

constexpr std::size_t kKeysInBlock = 160;
constexpr std::size_t kMostRowsInBlock = 32;

// False for NaN, which equals nothing.
bool SetToValue(ValueKey& key, const Variant& cell) {
  switch (cell.Kind()) {
    case VariantKind::kString: key.SetText(cell.StringValue()); return true;
    case VariantKind::kCurrency: key.SetInteger(cell.CurrencyUnitsValue()); return true;
    case VariantKind::kBoolean: key.SetInteger(cell.BooleanValue() ? 1 : 0); return true;
    case VariantKind::kInteger:
    case VariantKind::kInt64: key.SetInteger(cell.Int64Value()); return true;
    default: key.SetReal(cell.DoubleValue()); return !std::isnan(cell.DoubleValue());
  }
}

}  // namespace

bool Grid::IsUsable() const {
  return std::isfinite(width_);
}

bool Grid::Holds(double value) const {
  return std::fabs(value / width_) < 0x1p50;
}

double Grid::StretchOf(double value) const {
  return std::floor(value / width_);
}

KeyWalk::KeyWalk(Rows rows, std::span<const CodePlace> places, std::span<const ValueCodes> codes,
                 Grid grid)
    : rows_(rows), places_(places), codes_(codes), grid_(grid), counts_(places.size()) {
  const std::size_t keys_in_row = std::max<std::size_t>(places.size(), 1);
  block_ = std::clamp<std::size_t>(kKeysInBlock / keys_in_row, 1, kMostRowsInBlock);
  for (const CodePlace& place : places) cells_ = std::max(cells_, place.cell + 1);
  keyed_.resize(block_ * places.size());
}

bool KeyWalk::Next() {
  begin_ = end_;
  end_ = std::min(begin_ + block_, rows_.size());
  if (begin_ == end_) return false;
  PrefetchBehind();
  for (std::size_t place = 0; place < places_.size(); ++place) TakeKeys(place);
  PrefetchKept();
  return true;
}

// The texts of the next block and the cells of the one after.
void KeyWalk::PrefetchBehind() const {
  for (std::size_t i = end_ + block_; i < end_ + 2 * block_; ++i) PrefetchCells(rows_, i, cells_);
  for (const CodePlace& place : places_) {
    if (place.has_texts) PrefetchTexts(place);
  }
}

void KeyWalk::PrefetchTexts(const CodePlace& place) const {
  // A long text begins behind its length, and may not end where the first line of the cache does.
  constexpr std::ptrdiff_t kToLength = -16;
  constexpr std::ptrdiff_t kToEnd = 24;
  const std::size_t end = std::min(end_ + block_, rows_.size());
  for (std::size_t i = end_; i < end; ++i) {
    const Variant* const cell = CellOf(rows_[i], place.cell);
    if (cell == nullptr || !cell->IsString()) continue;
    const char16_t* const text = cell->StringValue().data();
    PrefetchFar(Beside(text, kToLength));
    PrefetchFar(Beside(text, kToEnd));
  }
}

// What the block's keys will be compared with.
void KeyWalk::PrefetchKept() const {
  const auto for_each_key = [&](bool only_texts, auto prefetch) {
    for (std::size_t place = 0; place < places_.size(); ++place) {
      const ValueCodes& codes = codes_[places_[place].column];
      if (!codes.IsLarge() || (only_texts && !places_[place].has_texts)) continue;
      for (const KeyedRow& keyed : Keys(place)) prefetch(codes, keyed.key);
    }
  };
  for_each_key(false,
               [](const ValueCodes& codes, const ValueKey& key) { codes.PrefetchKept(key); });
  for_each_key(true, [](const ValueCodes& codes, const ValueKey& key) { codes.PrefetchText(key); });
}

void KeyWalk::TakeKeys(std::size_t place) {
  const auto take_stretches = [&](auto stretch_of) {
    TakeKeys(place, [&](ValueKey& key, const Variant& cell) {
      key.SetReal(stretch_of(VarToDouble(cell)));
      return true;
    });
  };
  switch (places_[place].sort) {
    case KeySort::kValue: return TakeKeys(place, SetToValue);
    case KeySort::kStretch:
      return take_stretches([&](double value) { return grid_.StretchOf(value); });
    case KeySort::kLowerStretch:
      return take_stretches([&](double value) { return grid_.LowerStretch(value); });
    case KeySort::kUpperStretch:
      return take_stretches([&](double value) { return grid_.UpperStretch(value); });
  }
}

template <typename SetKey>
void KeyWalk::TakeKeys(std::size_t place, SetKey set_key) {
  const std::size_t cell_place = places_[place].cell;
  const ValueCodes& codes = codes_[places_[place].column];
  KeyedRow* const first = &keyed_[place * block_];
  KeyedRow* keyed = first;
  for (std::size_t row = begin_; row < end_; ++row) {
    const Variant* const cell = CellOf(rows_[row], cell_place);
    if (cell == nullptr || !set_key(keyed->key, *cell)) continue;
    keyed->row = static_cast<std::uint32_t>(row);
    codes.PrefetchSlot(keyed->key);
    ++keyed;
  }
  counts_[place] = static_cast<std::size_t>(keyed - first);
}

}  // namespace zentavo::optimise_internal
