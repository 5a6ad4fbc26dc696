#include "zentavo/platform/thread_pool.h"

#include <windows.h>

#include <memory>
#include <new>

#include "zentavo/platform/windows/pin_library.h"

namespace zentavo::platform {

namespace {

struct Work {
  WorkFunction function;
  void* context;
};

DWORD WINAPI RunWork(void* work) {
  const Work taken = *std::unique_ptr<Work>(static_cast<Work*>(work));
  taken.function(taken.context);
  return 0;
}

}  // namespace

bool QueueSystemWork(WorkFunction function, void* context) {
  PinLibrary();
  std::unique_ptr<Work> work(new (std::nothrow) Work{function, context});
  if (!work || !QueueUserWorkItem(RunWork, work.get(), 0)) return false;
  static_cast<void>(work.release());  // the system's thread owns it now
  return true;
}

}  // namespace zentavo::platform
