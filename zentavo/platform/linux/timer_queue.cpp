#include "zentavo/platform/timer_queue.h"

#include <sys/prctl.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <utility>

#include "zentavo/platform/linux/own_threads.h"
#include "zentavo/platform/thread_pool.h"

namespace zentavo::platform {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Lock = std::unique_lock<std::mutex>;
using Armed = std::multimap<Clock::time_point, TimerPtr>;

// A program that was stopped for a while is not flooded with the ticks of the meantime.
constexpr std::int64_t kMostTicksBehind = 1000;

}  // namespace

// Shared by the queue, its thread and its timers, so that a late callback finds it.
struct TimerQueue::State {
  const std::uint32_t generation = ForkGeneration();
  std::mutex mutex;  // guards what follows and the timers; never held while a callback runs
  std::condition_variable changed;
  std::condition_variable ended;
  Armed armed;
  int running = 0;  // callbacks
  bool has_thread = false;
  std::atomic<bool> closed{false};  // read without the lock too
  std::shared_ptr<State> kept;      // itself, when it must never be destroyed

  // In a child made by fork: the thread is gone, and the lock may be held by it for ever.
  bool LeftByFork() const { return generation != ForkGeneration(); }

  // A timer of `self`'s, which is armed; null when there is no thread for it.
  static TimerPtr Arm(const std::shared_ptr<State>& self, Clock::time_point due,
                      Clock::duration period, Callback callback);
  static void RunThread(void* state);
  void FireAsDue();
  void Expire();
  static void Tick(const TimerPtr& timer, std::int64_t count);
  // Returns whether the thread runs; `self` is what it shares.
  bool EnsureThread(const std::shared_ptr<State>& self);
};

struct Timer {
  std::shared_ptr<TimerQueue::State> queue;
  TimerQueue::Callback callback;
  Clock::duration period;
  // Guarded by the queue's lock.
  Armed::iterator place;
  std::int64_t ticks = 0;  // due and not yet called back
  bool armed = true;
  bool running = false;
  TimerPtr queued;  // itself, while it is queued to the pool or runs there

  void CallBack(Lock& lock);
  static void Run(void* timer);
};

namespace {

// Whose callback runs on this thread.
constinit thread_local const Timer* calling = nullptr;

}  // namespace

TimerPtr TimerQueue::State::Arm(const std::shared_ptr<State>& self, Clock::time_point due,
                                Clock::duration period, Callback callback) {
  auto timer = std::make_shared<Timer>();
  timer->queue = self;
  timer->callback = std::move(callback);
  timer->period = period;
  const Lock lock(self->mutex);
  if (!self->EnsureThread(self)) return nullptr;
  timer->place = self->armed.emplace(due, timer);
  if (timer->place == self->armed.begin()) self->changed.notify_one();
  return timer;
}

// The system may let a thread sleep 50 us longer than it asked for, unless it asks for less.
void TimerQueue::State::RunThread(void* state) {
  prctl(PR_SET_TIMERSLACK, 1UL);  // ns
  const std::unique_ptr<std::shared_ptr<State>> held(static_cast<std::shared_ptr<State>*>(state));
  (*held)->FireAsDue();
}

bool TimerQueue::State::EnsureThread(const std::shared_ptr<State>& self) {
  if (has_thread) return true;
  auto shared = std::make_unique<std::shared_ptr<State>>(self);
  has_thread = StartOwnThread(RunThread, shared.get());
  if (has_thread) static_cast<void>(shared.release());  // the thread's now
  return has_thread;
}

void TimerQueue::State::FireAsDue() {
  Lock lock(mutex);
  while (!closed) {
    if (armed.empty()) {
      changed.wait(lock);
    } else if (const Clock::time_point due = armed.begin()->first; due > Clock::now()) {
      changed.wait_until(lock, due);
    } else {
      Expire();
    }
  }
}

// The first timer's node is used again for its next tick, so that a tick allocates nothing.
void TimerQueue::State::Expire() {
  auto node = armed.extract(armed.begin());
  const TimerPtr timer = node.mapped();
  if (timer->period == Clock::duration::zero()) {
    timer->armed = false;
    Tick(timer, 1);
    return;
  }
  const std::int64_t ticks = (Clock::now() - node.key()) / timer->period + 1;
  node.key() += ticks * timer->period;
  timer->place = armed.insert(std::move(node));
  Tick(timer, ticks);
}

// A tick that the pool refuses is lost.
void TimerQueue::State::Tick(const TimerPtr& timer, std::int64_t count) {
  timer->ticks = std::min(timer->ticks + count, kMostTicksBehind);
  if (timer->queued) return;
  timer->queued = timer;
  if (QueueSystemWork(Timer::Run, timer.get())) return;
  timer->queued.reset();
  timer->ticks = 0;
}

void Timer::Run(void* timer) {
  Timer& self = *static_cast<Timer*>(timer);
  TimerPtr held;  // given up behind the lock, since it may be the last one
  Lock lock(self.queue->mutex);
  while (self.ticks > 0 && !self.queue->closed) self.CallBack(lock);
  held = std::move(self.queued);
}

void Timer::CallBack(Lock& lock) {
  --ticks;
  running = true;
  ++queue->running;
  lock.unlock();
  const Timer* const outer = std::exchange(calling, this);
  callback();
  calling = outer;
  lock.lock();
  running = false;
  --queue->running;
  queue->ended.notify_all();
}

TimerQueue::TimerQueue() : state_(std::make_shared<State>()) {}

// A child made by fork keeps what its parent's thread may have locked: it can never be destroyed.
TimerQueue::~TimerQueue() {
  Close();
  if (state_->LeftByFork()) state_->kept = state_;
}

// Never destroyed: its thread uses it until the process ends.
TimerQueue& TimerQueue::Default() {
  static constinit std::atomic<TimerQueue*> process_queue{nullptr};
  TimerQueue* current = process_queue.load(std::memory_order_acquire);
  while (current == nullptr || !current->Usable()) {
    auto created = std::make_unique<TimerQueue>();
    if (process_queue.compare_exchange_strong(current, created.get())) current = created.release();
  }
  return *current;
}

bool TimerQueue::Usable() const {
  return !state_->LeftByFork() && !state_->closed;
}

TimerPtr TimerQueue::Start(std::uint32_t due_ms, std::uint32_t period_ms, Callback callback) {
  if (!Usable()) return nullptr;
  return State::Arm(state_, Clock::now() + milliseconds(due_ms), milliseconds(period_ms),
                    std::move(callback));
}

// The clock is the one whose milliseconds TickCount counts.
TimerPtr TimerQueue::StartOnTick(std::uint32_t due_ms, Callback callback) {
  if (!Usable()) return nullptr;
  const auto tick = std::chrono::floor<milliseconds>(Clock::now());
  return State::Arm(state_, tick + milliseconds(due_ms), milliseconds(0), std::move(callback));
}

void TimerQueue::Stop(const TimerPtr& timer, TimerStop stop) {
  if (!timer || timer->queue->LeftByFork()) return;
  State& state = *timer->queue;
  Armed::node_type removed;  // given up behind the lock
  Lock lock(state.mutex);
  if (timer->armed && !state.closed) removed = state.armed.extract(timer->place);
  timer->armed = false;
  timer->ticks = 0;
  if (stop == TimerStop::kWait) state.ended.wait(lock, [&] { return !timer->running; });
}

void TimerQueue::Close() {
  if (state_->LeftByFork()) return;
  Armed stopped;  // given up behind the lock
  Lock lock(state_->mutex);
  state_->closed = true;
  stopped.swap(state_->armed);
  state_->changed.notify_all();
  const int own = calling != nullptr && calling->queue == state_ ? 1 : 0;
  state_->ended.wait(lock, [&] { return state_->running <= own; });
}

}  // namespace zentavo::platform
