// Counts of arguments for all calls of one text, however they nest, in linear time.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo::script_scan {

// Where the blocks of one kind end, found in one pass over the text.
class BlockEnds {
 public:
  BlockEnds(StringView text, char16_t open, char16_t close);

  // What SkipBlock does for an opening character outside quotes, errors included.
  void Skip(std::int32_t& position) const;

 private:
  char16_t close_;
  std::vector<std::int32_t> ends_;  // by the opening character's position, from 0
};

class ArgumentCounter {
 public:
  // `text` must outlive the counter and stay as it is.
  explicit ArgumentCounter(StringView text) : text_(text) {}

  // CountFunctionParameters at `position`, which is outside quotes and never lies before the
  // position of an earlier call.
  std::int32_t Count(std::int32_t position);

 private:
  std::int32_t Scan(std::int32_t position);
  std::int32_t LookUp(std::int32_t position);
  const BlockEnds& EndsOf(char16_t open, char16_t close);

  StringView text_;
  std::int32_t scanned_to_ = 0;  // calls before this lie inside one that was scanned
  std::optional<BlockEnds> parentheses_;
  std::optional<BlockEnds> brackets_;
};

}  // namespace zentavo::script_scan
