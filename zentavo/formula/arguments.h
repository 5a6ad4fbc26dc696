// The arguments of a function call.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zentavo/formula/token.h"

namespace zentavo {

// A list that owns its values. Neither copied nor moved.
class ZENTAVO_API TArguments {
 public:
  TArguments() = default;
  TArguments(const TArguments&) = delete;
  TArguments& operator=(const TArguments&) = delete;

  std::int32_t Count() const { return count_; }
  // Zero-based. Raises EListError "List index out of bounds (%d)".
  TResult& Items(std::int32_t index) const;
  // Appends a value and returns its place.
  TResult& Add(std::unique_ptr<TResult> item);
  // Appends a fresh value, reusing one that Clear set free.
  TResult& AddNew();
  void Clear() { count_ = 0; }

 private:
  std::vector<std::unique_ptr<TResult>> items_;  // those behind count_ are free for AddNew
  std::int32_t count_ = 0;
};

}  // namespace zentavo
