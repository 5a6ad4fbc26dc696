#include "zentavo/expr/argument_counter.h"

#include <array>
#include <cstddef>

#include "zentavo/expr/parameter_scan.h"

namespace zentavo::script_scan {

namespace {

constexpr std::int32_t kUnclosed = 0;
constexpr std::int32_t kTooDeep = -1;

}  // namespace

BlockEnds::BlockEnds(StringView text, char16_t open, char16_t close)
    : close_(close), ends_(text.size(), kUnclosed) {
  std::vector<std::size_t> pending;
  bool quoted = false;
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char16_t unit = text[index];
    if (unit == u'\'') {
      quoted = !quoted;
    } else if (!quoted && unit == open) {
      pending.push_back(index);
      // The block that this one is too deep in; those around it are marked already.
      if (pending.size() > kMaxBlockNesting)
        ends_[pending[pending.size() - 1 - kMaxBlockNesting]] = kTooDeep;
    } else if (!quoted && unit == close && !pending.empty()) {
      std::int32_t& end = ends_[pending.back()];
      if (end != kTooDeep) end = static_cast<std::int32_t>(index) + 1;
      pending.pop_back();
    }
  }
  if (quoted || text.empty() || text.back() != close) return;
  for (const std::size_t index : pending) {
    if (ends_[index] != kTooDeep) ends_[index] = LengthOf(text);
  }
}

void BlockEnds::Skip(std::int32_t& position) const {
  const std::int32_t end = ends_[static_cast<std::size_t>(position - 1)];
  if (end == kTooDeep) RaiseTooDeep();
  if (end == kUnclosed) RaiseExpected(String{u'\'', close_, u'\''});
  position = end;
}

std::int32_t ArgumentCounter::Count(std::int32_t position) {
  return position < scanned_to_ ? LookUp(position) : Scan(position);
}

std::int32_t ArgumentCounter::Scan(std::int32_t position) {
  std::int32_t count = 0;
  const auto skip = [this](std::int32_t& at, char16_t open, char16_t close) {
    SkipBlock(text_, at, open, close);
  };
  scanned_to_ = position;
  ScanParameters(text_, scanned_to_, skip, [&](StringView) { ++count; });
  return count;
}

std::int32_t ArgumentCounter::LookUp(std::int32_t position) {
  std::int32_t count = 0;
  const auto skip = [this](std::int32_t& at, char16_t open, char16_t close) {
    EndsOf(open, close).Skip(at);
  };
  ScanParameters(text_, position, skip, [&](StringView) { ++count; });
  return count;
}

const BlockEnds& ArgumentCounter::EndsOf(char16_t open, char16_t close) {
  std::optional<BlockEnds>& ends = open == u'(' ? parentheses_ : brackets_;
  if (!ends) ends.emplace(text_, open, close);
  return *ends;
}

}  // namespace zentavo::script_scan
