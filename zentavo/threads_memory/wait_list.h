// A list that its users lock, waiting at most a given time.
//
//   TWaitList jobs;
//   if (TList* list = jobs.LockList(100)) {
//     list->Add(&job);
//     jobs.UnLockList();
//   }
//
// All operations may be called from any thread.
#pragma once

#include <memory>

#include "zentavo/framework/monitor.h"
#include "zentavo/framework/pointer_list.h"

namespace zentavo {

// Neither copied nor moved.
class ZENTAVO_API TWaitList {
 public:
  TWaitList() = default;
  TWaitList(const TWaitList&) = delete;
  TWaitList& operator=(const TWaitList&) = delete;
  // Waits until whoever holds the list has given it up; nobody may ask for it any more.
  ~TWaitList();

  // Waits at most `timeout` milliseconds (0: tries once, negative: as long as it takes). Returns
  // the list, which the calling thread then holds and may lock again, or null.
  TList* LockList(std::int32_t timeout);
  // Gives up one LockList. Raises Exception "Object lock not owned" from another thread.
  void UnLockList();

 private:
  TList FList;  // guarded by FLock
  // Shared with whoever is giving it up, since that may go on after the list has been destroyed.
  const std::shared_ptr<TMonitor> FLock = std::make_shared<TMonitor>();
};

}  // namespace zentavo
