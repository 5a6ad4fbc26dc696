// Growing runs of plain values whose room is written directly: internal to the JSON classes. They
// grow in place where the system can, as vectors do not.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>

#include "zentavo/framework/text.h"

namespace zentavo::json_internal {

template <typename T>
class Run {
 public:
  static_assert(std::is_trivially_copyable_v<T>);

  // Room for `count` more, at the end; SetEnd takes what was written.
  T* Room(std::size_t count) {
    if (capacity_ - size_ < count) Grow(count);
    return items_.get() + size_;
  }
  void SetEnd(const T* end) { size_ = static_cast<std::size_t>(end - items_.get()); }
  void Add(T item) {
    *Room(1) = item;
    ++size_;
  }
  void CutTo(std::size_t size) { size_ = size; }
  std::size_t Size() const { return size_; }
  const T* Items() const { return items_.get(); }
  T& Last() { return items_.get()[size_ - 1]; }

 private:
  struct FreeMemory {
    void operator()(T* memory) const { std::free(memory); }
  };

  void Grow(std::size_t count) {
    const std::size_t capacity = std::max(size_ + count, std::max<std::size_t>(64, capacity_ * 2));
    void* grown = std::realloc(static_cast<void*>(items_.get()), capacity * sizeof(T));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(items_.release());
    items_.reset(static_cast<T*>(grown));
    capacity_ = capacity;
  }

  std::unique_ptr<T, FreeMemory> items_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

class TextBuffer : public Run<char16_t> {
 public:
  using Run::Add;
  void Add(StringView text) { SetEnd(std::copy(text.begin(), text.end(), Room(text.size()))); }
  void Add(std::size_t count, char16_t unit) { SetEnd(std::fill_n(Room(count), count, unit)); }
  StringView View() const { return {Items(), Size()}; }
  StringView From(std::size_t start) const { return View().substr(start); }
};

}  // namespace zentavo::json_internal
