// Taking a lock that is held for a few instructions at a time.
#pragma once

#include <mutex>

namespace zentavo::platform {

inline void PauseProcessor() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

// Returns the lock held. Tries for about a microsecond before it lets the thread sleep, since a
// sleep and a wake-up cost more than the holder's whole work.
inline std::unique_lock<std::mutex> LockSpinning(std::mutex& mutex) {
  constexpr int kTries = 40;
  std::unique_lock lock(mutex, std::try_to_lock);
  for (int tries = 1; tries < kTries && !lock.owns_lock(); ++tries) {
    PauseProcessor();
    if (lock.try_lock()) return lock;
  }
  if (!lock.owns_lock()) lock.lock();
  return lock;
}

}  // namespace zentavo::platform
