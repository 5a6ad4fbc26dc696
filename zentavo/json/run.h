// Growing runs of plain values whose room is written directly: internal to the JSON classes. The
// first few lie in the run itself; they grow in place where the system can, as vectors do not.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace zentavo::json_internal {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

template <typename T, std::size_t kFew>
class Run {
 public:
  static_assert(std::is_trivially_copyable_v<T>);

  using Memory = std::unique_ptr<T, FreeMemory>;

  Run() = default;
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  void Add(const T& item) { *New() = item; }
  // One more item, for the caller to fill.
  T* New() {
    if (end_ == limit_) Grow();
    return end_++;
  }
  void CutTo(std::size_t size) { end_ = begin_ + size; }
  void RemoveLast() { --end_; }

  std::size_t Size() const { return static_cast<std::size_t>(end_ - begin_); }
  bool Empty() const { return end_ == begin_; }
  T* From(std::size_t index) { return begin_ + index; }
  const T* Begin() const { return begin_; }
  const T* End() const { return end_; }
  T& Last() { return end_[-1]; }
  // Hands over the memory of all items, which are more than the first few, and is empty again.
  Memory Release() {
    begin_ = end_ = few_.data();
    limit_ = begin_ + kFew;
    return std::move(grown_);
  }

 private:
  void Grow() {
    const std::size_t size = Size();
    const bool first = grown_ == nullptr;
    Resize(size * 2);
    if (first) std::copy_n(few_.data(), size, grown_.get());
    begin_ = grown_.get();
    end_ = begin_ + size;
    limit_ = begin_ + size * 2;
  }

  void Resize(std::size_t capacity) {
    void* resized = std::realloc(static_cast<void*>(grown_.get()), capacity * sizeof(T));
    if (resized == nullptr) throw std::bad_alloc();
    static_cast<void>(grown_.release());
    grown_.reset(static_cast<T*>(resized));
  }

  std::array<T, kFew> few_;
  Memory grown_;
  T* begin_ = few_.data();
  T* end_ = begin_;
  T* limit_ = begin_ + kFew;
};

}  // namespace zentavo::json_internal
