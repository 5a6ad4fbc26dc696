// The bar that shows a person how far a transfer has come.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace zentavo::tool {

// The bar of `done` bytes of `total`, or the count alone where the total is 0, unknown.
std::string TransferBar(std::int64_t done, std::int64_t total);

// Shows the bar on standard error when that is a terminal and the transfer takes longer than a
// second, and takes it away when destroyed. Neither copied nor moved.
class TransferProgress {
 public:
  explicit TransferProgress(std::int64_t total);
  TransferProgress(const TransferProgress&) = delete;
  TransferProgress& operator=(const TransferProgress&) = delete;
  ~TransferProgress();

  void Advance(std::int64_t bytes);

 private:
  using Clock = std::chrono::steady_clock;

  const std::int64_t total_;
  const bool terminal_;
  std::int64_t done_ = 0;
  std::size_t shown_ = 0;  // the width of what stands there
  Clock::time_point next_;
};

}  // namespace zentavo::tool
