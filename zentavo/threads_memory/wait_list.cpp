#include "zentavo/threads_memory/wait_list.h"

namespace zentavo {

TWaitList::~TWaitList() {
  const MonitorLock last(*FLock);
}

TList* TWaitList::LockList(std::int32_t timeout) {
  return FLock->Enter(timeout) ? &FList : nullptr;
}

void TWaitList::UnLockList() {
  const std::shared_ptr<TMonitor> lock = FLock;
  lock->Exit();
}

}  // namespace zentavo
