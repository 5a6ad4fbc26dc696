// A first-in first-out queue that allocates only to grow.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

namespace zentavo::platform {

// Not locked. front, pop_front and pop_back need an element.
template <typename T>
requires std::is_trivially_copyable_v<T>
class RingQueue {
 public:
  bool empty() const { return size_ == 0; }
  std::size_t size() const { return size_; }

  // Makes room for `count` more elements. Raises std::bad_alloc; the queue is as before then.
  void Reserve(std::size_t count) {
    while (capacity_ - size_ < count) Grow();
  }
  // Raises the same, but where there is room.
  void push_back(const T& value) {
    if (size_ == capacity_) Grow();
    slots_[(first_ + size_) & (capacity_ - 1)] = value;
    ++size_;
  }
  const T& front() const { return slots_[first_]; }
  void pop_front() {
    first_ = (first_ + 1) & (capacity_ - 1);
    DropLast();
  }
  void pop_back() { DropLast(); }

 private:
  static constexpr std::size_t kLeast = 32;
  static constexpr std::size_t kMostKept = 4096;  // by an empty queue

  void Grow() {
    const std::size_t capacity = std::max(2 * capacity_, kLeast);
    std::unique_ptr<T[]> slots(new T[capacity]);
    const T* const old = slots_.get();
    std::rotate_copy(old, old + first_, old + capacity_, slots.get());
    slots_ = std::move(slots);
    capacity_ = capacity;
    first_ = 0;
  }
  void DropLast() {
    --size_;
    if (size_ > 0 || capacity_ <= kMostKept) return;
    slots_.reset();
    capacity_ = 0;
    first_ = 0;
  }

  std::unique_ptr<T[]> slots_;
  std::size_t capacity_ = 0;  // 0 or a power of two
  std::size_t first_ = 0;
  std::size_t size_ = 0;
};

}  // namespace zentavo::platform
