// The long texts of variants.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "zentavo/framework/text.h"

namespace zentavo::variant_internal {

// One text in one allocation, shared by the variants that hold copies of it, on any threads. It
// changes only while a single variant holds it.
class ZENTAVO_API TextBlock {
 public:
  // The two texts behind each other, with room for `capacity` units if that is more; one holder.
  static TextBlock* Create(StringView front, StringView back, std::size_t capacity = 0);
  TextBlock(const TextBlock&) = delete;
  TextBlock& operator=(const TextBlock&) = delete;

  StringView View() const noexcept { return {reinterpret_cast<const char16_t*>(this + 1), size_}; }
  void AddHolder() noexcept { holders_.fetch_add(1, std::memory_order_relaxed); }
  // Destroys the block when its last holder goes.
  void RemoveHolder() noexcept {
    const bool last = holders_.load(std::memory_order_acquire) == 1 ||
                      holders_.fetch_sub(1, std::memory_order_acq_rel) == 1;
    if (last) Destroy();
  }
  // Appends in place if there is room and a single holder. `text` may be part of this one.
  bool TryAppend(StringView text) noexcept;

 private:
  explicit TextBlock(std::size_t capacity) : capacity_(capacity) {}
  ~TextBlock() = default;
  void Destroy() noexcept;
  char16_t* Units() noexcept { return reinterpret_cast<char16_t*>(this + 1); }
  void Append(StringView text) noexcept;

  std::atomic<std::size_t> holders_ = 1;
  std::size_t size_ = 0;  // units
  std::size_t capacity_;  // units
};

}  // namespace zentavo::variant_internal
