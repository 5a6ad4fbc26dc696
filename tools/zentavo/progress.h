// The line that tells a person how far long work has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zentavo::tool {

// Counts steps; prints the count on standard error when that is a terminal and the work takes
// longer than a second, and takes the line away when destroyed. Neither copied nor moved.
class Progress {
 public:
  // What is counted, such as "rows".
  explicit Progress(std::string unit);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  void Advance() {
    constexpr std::int64_t kStepsBetweenLooks = 256;
    if (++count_ % kStepsBetweenLooks == 0 && terminal_) Look();
  }
  // The same for work that counts its steps itself and tells of some of them.
  void AdvanceTo(std::int64_t count) {
    count_ = count;
    if (terminal_) Look();
  }

 private:
  using Clock = std::chrono::steady_clock;

  void Look();

  std::string unit_;
  std::int64_t count_ = 0;
  bool terminal_;
  bool shown_ = false;
  Clock::time_point next_;
};

}  // namespace zentavo::tool
