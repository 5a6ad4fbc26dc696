#include "zentavo/foundation/helper_times.h"

#include <mutex>

#include "zentavo/platform/clock.h"

namespace zentavo {

namespace {

// The system's times, and the process's own time at that moment.
struct LoadSample {
  platform::SystemTimes system;
  std::int64_t process = 0;
  bool taken = false;
};

// The previous call's sample, and what guards it.
struct PreviousSample {
  std::mutex lock;
  LoadSample sample;
};

PreviousSample& Previous() {
  static PreviousSample previous;
  return previous;
}

std::int32_t LoadBetween(const platform::SystemTimes& before, const platform::SystemTimes& now) {
  const std::uint64_t total = now.total - before.total;
  if (total == 0) return 0;
  const std::uint64_t busy = total - (now.idle - before.idle);
  return static_cast<std::int32_t>(busy * 100 / total);
}

}  // namespace

std::int64_t XGetThreadTime(std::uint32_t ThreadId) {
  return platform::ThreadTime(ThreadId);
}

std::int64_t XGetCPUThreadCycles() {
  return platform::ThreadCycles();
}

std::int32_t XGetTotalCPU() {
  LoadSample sample;
  if (!platform::ReadSystemTimes(sample.system)) return -1;
  sample.process = platform::ProcessTime();
  sample.taken = true;
  PreviousSample& previous = Previous();
  const std::lock_guard guard(previous.lock);
  const std::int32_t load =
      previous.sample.taken ? LoadBetween(previous.sample.system, sample.system) : 0;
  previous.sample = sample;
  return load;
}

}  // namespace zentavo
