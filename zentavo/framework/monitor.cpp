#include "zentavo/framework/monitor.h"

#include <chrono>

#include "zentavo/framework/exception.h"

namespace zentavo {

bool TMonitor::Enter(std::int32_t timeout_ms) {
  const std::thread::id self = std::this_thread::get_id();
  const auto free_or_mine = [&] { return entries_ == 0 || owner_ == self; };
  std::unique_lock lock(mutex_);
  if (timeout_ms < 0) {
    released_.wait(lock, free_or_mine);
  } else if (!free_or_mine() && timeout_ms > 0) {
    released_.wait_for(lock, std::chrono::milliseconds(timeout_ms), free_or_mine);
  }
  if (!free_or_mine()) return false;
  owner_ = self;
  ++entries_;
  return true;
}

void TMonitor::Exit() {
  const std::lock_guard lock(mutex_);
  if (entries_ == 0 || owner_ != std::this_thread::get_id()) {
    throw Exception(u"Object lock not owned");
  }
  // Notified under the lock: the next owner may destroy this monitor as soon as it has left it.
  if (--entries_ == 0) released_.notify_one();
}

}  // namespace zentavo
