#include "zentavo/framework/variant_text.h"

#include <algorithm>
#include <limits>
#include <new>

namespace zentavo::variant_internal {

TextBlock* TextBlock::Create(StringView front, StringView back, std::size_t capacity) {
  const std::size_t units = std::max(front.size() + back.size(), capacity);
  constexpr std::size_t kLargest =
      (std::numeric_limits<std::size_t>::max() - sizeof(TextBlock)) / sizeof(char16_t);
  if (units > kLargest) throw std::bad_alloc();
  void* memory = ::operator new(sizeof(TextBlock) + units * sizeof(char16_t));
  auto* block = new (memory) TextBlock(units);
  block->Append(front);
  block->Append(back);
  return block;
}

bool TextBlock::TryAppend(StringView text) noexcept {
  const bool free = holders_.load(std::memory_order_acquire) == 1;
  if (!free || capacity_ - size_ < text.size()) return false;
  Append(text);
  return true;
}

void TextBlock::Append(StringView text) noexcept {
  std::copy(text.begin(), text.end(), Units() + size_);
  size_ += text.size();
}

void TextBlock::Destroy() noexcept {
  this->~TextBlock();
  ::operator delete(this);
}

}  // namespace zentavo::variant_internal
