// Counts the rows that are looked at and tells a host now and then.
#pragma once

#include <cstdint>
#include <functional>

namespace zentavo::optimise_internal {

class LookCounter {
 public:
  using Event = std::function<void(std::int64_t looks)>;

  // The event, which may be empty, must outlive the counter.
  explicit LookCounter(const Event& on_looks) : on_looks_(on_looks) {}

  void Count(std::int64_t looks) {
    looks_ += looks;
    if (looks_ >= next_) Tell();
  }

 private:
  static constexpr std::int64_t kLooksBetweenReports = 256;

  void Tell() {
    next_ = looks_ + kLooksBetweenReports;
    if (on_looks_) on_looks_(looks_);
  }

  const Event& on_looks_;
  std::int64_t looks_ = 0;
  std::int64_t next_ = kLooksBetweenReports;
};

}  // namespace zentavo::optimise_internal
