// A lock that its owner may take again, and that gives up after a time.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

#include "zentavo/platform/export.h"

namespace zentavo {

// Re-entrant lock: its owner may enter again and leaves as often as it entered. Neither copied nor
// moved; must not be destroyed while entered.
class ZENTAVO_API TMonitor {
 public:
  static constexpr std::int32_t kForever = -1;

  // Waits at most `timeout_ms` milliseconds (0: tries once, negative: as long as it takes). Returns
  // whether the calling thread now owns the lock.
  bool Enter(std::int32_t timeout_ms = kForever);
  // Gives up one entry. Raises Exception "Object lock not owned" when the calling thread does not
  // own the lock.
  void Exit();

 private:
  std::mutex mutex_;  // guards owner_ and entries_; held only while they are read or changed
  std::condition_variable released_;
  std::thread::id owner_;
  std::uint32_t entries_ = 0;
};

// Holds a monitor for a scope, waiting as long as it takes.
class MonitorLock {
 public:
  explicit MonitorLock(TMonitor& monitor) : monitor_(monitor) { monitor_.Enter(); }
  MonitorLock(const MonitorLock&) = delete;
  MonitorLock& operator=(const MonitorLock&) = delete;
  ~MonitorLock() { monitor_.Exit(); }

 private:
  TMonitor& monitor_;
};

}  // namespace zentavo
