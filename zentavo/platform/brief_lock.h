// A lock that is held for a few instructions at a time.
#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace zentavo::platform {

inline void PauseProcessor() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

// Neither taking nor releasing it enters the system, and releasing it is a plain store. Whoever
// finds it taken looks for about a microsecond, without writing, which would take the memory from
// the holder; then lets other threads run; then sleeps, so that a holder of lower priority gets on.
class BriefLock {
 public:
  void lock() {
    for (int looks = 0; !TakesIfFree(); ++looks) Wait(looks);
  }
  void unlock() { taken_.store(false, std::memory_order_release); }

 private:
  bool TakesIfFree() {
    return !taken_.load(std::memory_order_relaxed) &&
           !taken_.exchange(true, std::memory_order_acquire);
  }
  static void Wait(int looks) {
    if (looks < 40) return PauseProcessor();
    if (looks < 200) return std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::microseconds(50));
  }

  std::atomic<bool> taken_{false};
};

}  // namespace zentavo::platform
