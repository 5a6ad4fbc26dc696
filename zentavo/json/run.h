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

namespace zentavo::json_internal {

template <typename T, std::size_t kFew>
class Run {
 public:
  static_assert(std::is_trivially_copyable_v<T>);

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
  T& Last() { return end_[-1]; }

 private:
  struct FreeMemory {
    void operator()(T* memory) const { std::free(memory); }
  };

  void Grow() {
    const std::size_t size = Size();
    const std::size_t capacity = size * 2;
    void* grown = std::realloc(static_cast<void*>(grown_.get()), capacity * sizeof(T));
    if (grown == nullptr) throw std::bad_alloc();
    if (grown_ == nullptr) std::copy_n(few_.data(), size, static_cast<T*>(grown));
    static_cast<void>(grown_.release());
    grown_.reset(static_cast<T*>(grown));
    begin_ = grown_.get();
    end_ = begin_ + size;
    limit_ = begin_ + capacity;
  }

  std::array<T, kFew> few_;
  std::unique_ptr<T, FreeMemory> grown_;
  T* begin_ = few_.data();
  T* end_ = begin_;
  T* limit_ = begin_ + kFew;
};

}  // namespace zentavo::json_internal
