#include "zentavo/platform/thread_pool.h"

#include <atomic>
#include <memory>

#include "zentavo/platform/linux/own_threads.h"
#include "zentavo/platform/linux/work_queue.h"

namespace zentavo::platform {

namespace {

struct ProcessQueue {
  const std::uint32_t generation = ForkGeneration();
  WorkQueue queue;
};

constinit std::atomic<ProcessQueue*> process_queue{nullptr};

// A child made by fork leaves its parent's queue alone, locked or not, and makes its own. No queue
// is ever destroyed: its threads use it until the process ends.
WorkQueue& Queue() {
  ProcessQueue* current = process_queue.load(std::memory_order_acquire);
  while (current == nullptr || current->generation != ForkGeneration()) {
    auto created = std::make_unique<ProcessQueue>();
    if (process_queue.compare_exchange_strong(current, created.get())) {
      current = created.release();
    }
  }
  return current->queue;
}

}  // namespace

bool QueueSystemWork(WorkFunction function, void* context) {
  return Queue().Submit(function, context);
}

}  // namespace zentavo::platform
