// A lock that several processes share by its name.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

enum class MutexWait {
  kLocked,
  kTimedOut,
  kAbandoned,  // its owner died; the lock is free again, and what it guards may be half written
  kFailed,
};

// Re-entrant: its owner, a thread, may lock again and unlocks as often. Names are those of shared
// memory and last as long; a mutex and a memory of one name do not agree with each other. Neither
// copied nor moved. Lock and Unlock may be called from any thread.
class ZENTAVO_API NamedMutex {
 public:
  static constexpr std::uint32_t kForever = 0xFFFFFFFF;

  NamedMutex();
  NamedMutex(const NamedMutex&) = delete;
  NamedMutex& operator=(const NamedMutex&) = delete;
  // Unlocks what the calling thread still holds through this object.
  ~NamedMutex();

  // Opens or creates the mutex of that name, not locked. To be called once.
  SystemError Open(std::u16string_view name);

  // Waits at most `timeout_ms` milliseconds; the lock is the calling thread's with kLocked only.
  MutexWait Lock(std::uint32_t timeout_ms);
  // Does nothing when the calling thread does not hold the lock.
  void Unlock();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace zentavo::platform
