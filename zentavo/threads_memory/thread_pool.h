// A pool that runs at most so many items at once, in the order they came, and items with a delay.
//
//   TXThreadPool pool(2);
//   pool.Run(std::make_unique<Import>());
//   pool.RunDelay(std::make_unique<Report>(), 500);  // in half a second
//
// The pool has no threads of its own: its items run on the process-wide pool. A thread that has run
// an item takes the next one itself. All operations may be called from any thread, and from items.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "zentavo/platform/brief_lock.h"
#include "zentavo/platform/export.h"
#include "zentavo/platform/ring_queue.h"
#include "zentavo/platform/timer_queue.h"
#include "zentavo/threads_memory/delayed_items.h"
#include "zentavo/threads_memory/work_item.h"

namespace zentavo {

// Neither copied nor moved. A pool must outlive every item it started.
class ZENTAVO_API TXThreadPool {
 public:
  // With a cap below 1 every item waits for ever.
  explicit TXThreadPool(std::int32_t AMaxthreads);
  TXThreadPool(const TXThreadPool&) = delete;
  TXThreadPool& operator=(const TXThreadPool&) = delete;
  // Returns after a running CheckDelay has ended. Items still queued or delayed are neither run nor
  // destroyed: their makers have to know them.
  ~TXThreadPool();

  // Runs `Item`, at once when less than the cap are running, else when its turn comes. Raises as
  // ExecuteInThreadPool; the item is destroyed then, and one place of the cap is lost, which
  // callers rely on no more than on the start itself.
  void Run(std::unique_ptr<TXWorkItem> Item);
  // The same with an item that stays the caller's, who keeps it until CompletedOK is set: it gets a
  // start time of 1 unless it has one.
  void Run(TXWorkItem& Item);

  // Runs `Item` after `delay` milliseconds of TickCount; earlier by up to 9, when others are due
  // then. Items of one due time keep their order of arrival in the list, but of those that come due
  // together the last one is run first. A delay of 0 or less in front of all others sets no timer:
  // the item waits until another one's comes; callers rely on it. Raises Exception "Delayed item
  // not started: System Error %d" when there is no timer; the item is destroyed then.
  void RunDelay(std::unique_ptr<TXWorkItem> Item, std::int32_t delay);

  std::int32_t MaxThreads() const { return FMax; }
  // Items started and not yet ended, those included that a thread took from the queue.
  std::int32_t CurThreads() const { return queue_->FRunning; }
  // Items queued and delayed, not those that run. Read without locks: while others use the pool, a
  // hint.
  std::int32_t GetPendingCount() const { return queue_->queued + delayed_count_; }
  std::int32_t PendingCount() const { return GetPendingCount(); }

  // What the pool's threads and its timer call.
  //
  // Takes the first queued item; with none, counts one running item less and returns null.
  TXWorkItem* PickNext();
  // Runs the delayed items that are due within the next 10 ms and sets the timer for the rest.
  void CheckDelay();
  // Replaces the timer by one that calls CheckDelay in `ms` + 1 milliseconds, or by none when `ms`
  // is not positive, and returns after a running CheckDelay has ended.
  void ResetTimer(std::int32_t ms);

 private:
  struct Link;

  // What waits and how many run. Shared with a thread that is leaving it for the last time, since
  // that may go on after the pool has been destroyed.
  struct Queue {
    platform::BriefLock lock;  // guards the changes of what follows
    std::atomic<std::int32_t> FRunning{0};
    std::atomic<std::int32_t> queued{0};  // FList.size(), to be read without the lock
    platform::RingQueue<TXWorkItem*> FList;
  };

  void Start(TXWorkItem& item);
  // Returns how many of the items, from the first on, are to be started now; the rest is queued.
  std::size_t TakePlaces(std::span<TXWorkItem* const> items);
  // Both under delayed_lock_; the first returns false when the system refuses the timer, the second
  // starts the items of due_.
  bool ReplaceTimer(std::int32_t ms);
  void RunDue();

  const std::int32_t FMax;
  // Locks in the order in which they are taken: link_->lock, delayed_lock_, queue_->lock. No item
  // and no submission to the process-wide pool runs under the queue's lock.
  const std::shared_ptr<Queue> queue_;
  std::mutex delayed_lock_;  // guards what follows, up to FTimer
  DelayedItems FDelayed;
  std::vector<TXWorkItem*> due_;  // kept for its memory
  platform::TimerPtr FTimer;
  const std::shared_ptr<Link> link_;
  std::atomic<std::int32_t> delayed_count_{0};
};

}  // namespace zentavo
