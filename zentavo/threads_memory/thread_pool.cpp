#include "zentavo/threads_memory/thread_pool.h"

#include <algorithm>
#include <utility>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"
#include "zentavo/platform/brief_lock.h"
#include "zentavo/platform/clock.h"
#include "zentavo/platform/system_error.h"

namespace zentavo {

namespace {

using platform::TimerQueue;
using platform::TimerStop;

constexpr std::uint32_t kDueWithin = 9;  // milliseconds
constexpr std::uint32_t kKept = 1;       // the start time of an item that stays its owner's

// Under the lock that guards `count`, which others only read: no step that locks the memory.
void AddTo(std::atomic<std::int32_t>& count, std::int32_t step) {
  count.store(count.load(std::memory_order_relaxed) + step, std::memory_order_release);
}

}  // namespace

// What a timer's callback shares with the pool, so that one that comes late finds the pool gone.
struct TXThreadPool::Link {
  std::mutex lock;  // held while CheckDelay runs for a timer
  TXThreadPool* pool;

  void CheckDelay() {
    const std::lock_guard guard(lock);
    if (pool != nullptr) pool->CheckDelay();
  }
};

TXThreadPool::TXThreadPool(std::int32_t AMaxthreads)
    : FMax(AMaxthreads), queue_(std::make_shared<Queue>()), link_(std::make_shared<Link>()) {
  link_->pool = this;
}

// The last thread to leave the queue's lock may still be in it.
TXThreadPool::~TXThreadPool() {
  ResetTimer(-1);
  {
    const std::lock_guard guard(link_->lock);
    link_->pool = nullptr;
  }
  const std::lock_guard guard(queue_->lock);
}

void TXThreadPool::Run(std::unique_ptr<TXWorkItem> Item) {
  Start(*Item);
  static_cast<void>(Item.release());  // the pool's now
}

void TXThreadPool::Run(TXWorkItem& Item) {
  if (Item.FStartTime == 0) Item.FStartTime = kKept;
  Start(Item);
}

void TXThreadPool::Start(TXWorkItem& item) {
  item.FPool = this;
  TXWorkItem* const items[] = {&item};
  if (TakePlaces(items) == 1) item.TXWorkItem::Run();
}

std::size_t TXThreadPool::TakePlaces(std::span<TXWorkItem* const> items) {
  Queue& queue = *queue_;
  const std::lock_guard guard(queue.lock);
  const auto free = std::max(FMax - queue.FRunning.load(std::memory_order_relaxed), 0);
  const std::size_t starting = std::min(static_cast<std::size_t>(free), items.size());
  const std::size_t waiting = items.size() - starting;
  queue.FList.Reserve(waiting);
  for (TXWorkItem* const item : items.subspan(starting)) queue.FList.push_back(item);
  AddTo(queue.FRunning, static_cast<std::int32_t>(starting));
  AddTo(queue.queued, static_cast<std::int32_t>(waiting));
  return starting;
}

TXWorkItem* TXThreadPool::PickNext() {
  std::shared_ptr<Queue> last;  // given up behind the lock
  Queue& queue = *queue_;
  const std::lock_guard guard(queue.lock);
  if (queue.FList.empty()) {
    last = queue_;
    AddTo(queue.FRunning, -1);
    return nullptr;
  }
  TXWorkItem* const next = queue.FList.front();
  queue.FList.pop_front();
  AddTo(queue.queued, -1);
  return next;
}

void TXThreadPool::RunDelay(std::unique_ptr<TXWorkItem> Item, std::int32_t delay) {
  const std::uint32_t due = platform::TickCount() + static_cast<std::uint32_t>(delay);
  Item->FStartTime = due;
  const std::lock_guard guard(delayed_lock_);
  if (FDelayed.Add(due, Item.get()) && !ReplaceTimer(delay)) {
    const platform::SystemError error = platform::LastSystemError();
    FDelayed.RemoveFront();
    throw Exception(Format(u"Delayed item not started: System Error %d", {error}));
  }
  ++delayed_count_;
  static_cast<void>(Item.release());  // the list's now
}

// Sets the timer first, since starting many items takes a while.
void TXThreadPool::CheckDelay() {
  const std::lock_guard guard(delayed_lock_);
  const std::uint32_t now = platform::TickCount();
  due_.clear();
  FDelayed.TakeUpTo(now + kDueWithin, due_);
  if (!FDelayed.Empty()) ReplaceTimer(static_cast<std::int32_t>(FDelayed.FirstDue() - now));
  RunDue();
}

// Takes all places at once: the item that is due first is the last of them, and would wait for each
// of the others. An item whose start is refused is destroyed and does not keep the others back.
void TXThreadPool::RunDue() {
  for (TXWorkItem* const item : due_) {
    item->FStartTime = 0;
    item->FPool = this;
  }
  const std::size_t starting = TakePlaces(due_);
  delayed_count_ -= static_cast<std::int32_t>(due_.size());
  for (std::size_t i = 0; i < starting; ++i) {
    try {
      due_[i]->TXWorkItem::Run();
    } catch (const Exception&) {
      const std::unique_ptr<TXWorkItem> refused(due_[i]);
    }
  }
}

void TXThreadPool::ResetTimer(std::int32_t ms) {
  {
    const std::lock_guard guard(delayed_lock_);
    ReplaceTimer(ms);
  }
  const std::lock_guard running_check_over(link_->lock);
}

// Does not wait for a running callback: that may be waiting for the lock held here, or be the
// caller. One that comes late finds nothing due and sets the same timer again.
bool TXThreadPool::ReplaceTimer(std::int32_t ms) {
  TimerQueue::Stop(FTimer, TimerStop::kDontWait);
  FTimer.reset();
  if (ms <= 0) return true;
  FTimer = TimerQueue::Default().StartOnTick(static_cast<std::uint32_t>(ms) + 1,
                                             [link = link_] { link->CheckDelay(); });
  return FTimer != nullptr;
}

}  // namespace zentavo
