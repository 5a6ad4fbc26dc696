#include "zentavo/threads_memory/thread_pool.h"

#include <iterator>
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

constexpr std::int32_t kDueWithin = 9;  // milliseconds
constexpr std::uint32_t kKept = 1;      // the start time of an item that stays its owner's

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
  if (TakePlace(item)) item.TXWorkItem::Run();
}

bool TXThreadPool::TakePlace(TXWorkItem& item) {
  Queue& queue = *queue_;
  const std::lock_guard guard(queue.lock);
  if (queue.FRunning.load(std::memory_order_relaxed) < FMax) {
    AddTo(queue.FRunning, 1);
    return true;
  }
  queue.FList.push_back(&item);
  AddTo(queue.queued, 1);
  return false;
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
  const auto place = FDelayed.emplace(due, Item.get());
  if (place == FDelayed.begin() && !ReplaceTimer(delay)) {
    const platform::SystemError error = platform::LastSystemError();
    FDelayed.erase(place);
    throw Exception(Format(u"Delayed item not started: System Error %d", {error}));
  }
  ++delayed_count_;
  static_cast<void>(Item.release());  // the list's now
}

void TXThreadPool::CheckDelay() {
  const std::lock_guard guard(delayed_lock_);
  const std::uint32_t now = platform::TickCount();
  RunDue(now);
  if (!FDelayed.empty()) ReplaceTimer(static_cast<std::int32_t>(FDelayed.begin()->first - now));
}

// An item whose start is refused is destroyed and does not keep the others back.
void TXThreadPool::RunDue(std::uint32_t now) {
  auto place = FDelayed.begin();
  while (place != FDelayed.end() && static_cast<std::int32_t>(now - place->first) >= -kDueWithin) {
    ++place;
  }
  while (place != FDelayed.begin()) {
    const auto last = std::prev(place);
    std::unique_ptr<TXWorkItem> item(last->second);
    place = FDelayed.erase(last);
    --delayed_count_;
    item->FStartTime = 0;
    try {
      Run(std::move(item));
    } catch (const Exception&) {
      continue;
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
  FTimer = TimerQueue::Default().Start(static_cast<std::uint32_t>(ms) + 1, 0,
                                       [link = link_] { link->CheckDelay(); });
  return FTimer != nullptr;
}

}  // namespace zentavo
