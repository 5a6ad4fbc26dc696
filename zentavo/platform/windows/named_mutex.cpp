#include "zentavo/platform/named_mutex.h"

#include <atomic>

#include "zentavo/platform/windows/shared_name.h"

namespace zentavo::platform {

struct NamedMutex::State {
  HANDLE mutex = nullptr;
  std::atomic<int> locks{0};  // taken through this object; the system counts for each thread
};

NamedMutex::NamedMutex() : state_(std::make_unique<State>()) {}

NamedMutex::~NamedMutex() {
  if (state_->mutex == nullptr) return;
  for (int locks = state_->locks; locks > 0; --locks) Unlock();
  CloseHandle(state_->mutex);
}

SystemError NamedMutex::Open(std::u16string_view name) {
  const std::wstring system_name = SharedName(name);
  if (system_name.empty()) return ERROR_INVALID_NAME;
  state_->mutex = CreateMutexW(nullptr, FALSE, system_name.c_str());
  return state_->mutex != nullptr ? 0 : GetLastError();
}

MutexWait NamedMutex::Lock(std::uint32_t timeout_ms) {
  switch (WaitForSingleObject(state_->mutex, timeout_ms)) {
    case WAIT_OBJECT_0: ++state_->locks; return MutexWait::kLocked;
    case WAIT_ABANDONED: ReleaseMutex(state_->mutex); return MutexWait::kAbandoned;
    case WAIT_TIMEOUT: return MutexWait::kTimedOut;
    default: return MutexWait::kFailed;
  }
}

void NamedMutex::Unlock() {
  if (ReleaseMutex(state_->mutex)) --state_->locks;
}

}  // namespace zentavo::platform
