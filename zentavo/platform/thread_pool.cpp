#include "zentavo/platform/thread_pool.h"

#include <atomic>

namespace zentavo::platform {

namespace {

constinit std::atomic<WorkSubmitter> work_submitter{nullptr};

}  // namespace

void SetWorkSubmitter(WorkSubmitter submitter) {
  work_submitter = submitter;
}

bool QueueWork(WorkFunction function, void* context) {
  const WorkSubmitter submitter = work_submitter.load(std::memory_order_acquire);
  return submitter != nullptr ? submitter(function, context) : QueueSystemWork(function, context);
}

}  // namespace zentavo::platform
