#include "zentavo/threads_memory/work_item.h"

#include "zentavo/framework/exception.h"
#include "zentavo/platform/thread_pool.h"
#include "zentavo/threads_memory/thread_pool.h"

namespace zentavo {

TXWorkItem::~TXWorkItem() = default;

void TXWorkItem::Run() {
  if (!platform::QueueWork(Work, this)) {
    throw Exception(u"Operation Failed to start in Windows ThreadPool");
  }
}

void TXWorkItem::Work(void* item) {
  auto* next = static_cast<TXWorkItem*>(item);
  while (next != nullptr) next = RunOne(*next);
}

// An owner may destroy a kept item as soon as CompletedOK is set, so all else is read before.
TXWorkItem* TXWorkItem::RunOne(TXWorkItem& item) noexcept {
  const bool completed = item.Completes();
  TXThreadPool* const pool = item.FPool;
  const std::unique_ptr<TXWorkItem> freed(item.FStartTime == 0 ? &item : nullptr);
  if (completed) item.CompletedOK.store(true, std::memory_order_release);
  return pool != nullptr ? pool->PickNext() : nullptr;
}

bool TXWorkItem::Completes() noexcept {
  try {
    Execute();
    return true;
  } catch (...) {
    return false;
  }
}

void ExecuteInThreadPool(std::unique_ptr<TXWorkItem> Item) {
  Item->TXWorkItem::Run();
  static_cast<void>(Item.release());  // the pool's now
}

}  // namespace zentavo
