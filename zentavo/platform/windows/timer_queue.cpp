#include "zentavo/platform/timer_queue.h"

#include <windows.h>

#include <atomic>
#include <mutex>
#include <set>
#include <utility>

#include "zentavo/platform/windows/pin_library.h"

namespace zentavo::platform {

// Shared by the queue and its timers, so that a late callback finds it.
struct TimerQueue::State {
  HANDLE queue = nullptr;  // null: the process's own
  std::atomic<bool> usable{false};
  std::mutex mutex;  // guards `timers`
  // Those that the system may still call back.
  std::set<TimerPtr> timers;

  void Keep(const TimerPtr& timer) {
    const std::lock_guard lock(mutex);
    timers.insert(timer);
  }
  bool Forget(const TimerPtr& timer) {
    const std::lock_guard lock(mutex);
    return timers.erase(timer) != 0;
  }
};

struct Timer : std::enable_shared_from_this<Timer> {
  std::shared_ptr<TimerQueue::State> queue;
  TimerQueue::Callback callback;
  HANDLE handle = nullptr;
  // Set by the end of the only callback and by a stop that does not wait for it; whoever comes
  // second forgets the timer.
  std::atomic<bool> over{false};
  bool once = false;

  void LeaveOnce() {
    if (once && over.exchange(true)) queue->Forget(shared_from_this());
  }
  static void CALLBACK Run(void* timer, BOOLEAN);
};

namespace {

// Whose callback runs on this thread.
constinit thread_local const Timer* calling = nullptr;

// Tells whether the process is ending, its other threads gone.
bool ProcessIsEnding() {
  using Query = BOOLEAN(WINAPI*)();
  const HMODULE system = GetModuleHandleW(L"ntdll.dll");
  if (system == nullptr) return false;
  const auto found = reinterpret_cast<void*>(GetProcAddress(system, "RtlDllShutdownInProgress"));
  return found != nullptr && reinterpret_cast<Query>(found)();
}

}  // namespace

void CALLBACK Timer::Run(void* timer, BOOLEAN) {
  const TimerPtr self = static_cast<Timer*>(timer)->shared_from_this();
  const Timer* const outer = std::exchange(calling, self.get());
  self->callback();
  calling = outer;
  self->LeaveOnce();
}

TimerQueue::TimerQueue() : state_(std::make_shared<State>()) {
  state_->queue = CreateTimerQueue();
  state_->usable = state_->queue != nullptr;
}

TimerQueue::~TimerQueue() {
  Close();
}

// Never destroyed: its callbacks use it until the process ends.
TimerQueue& TimerQueue::Default() {
  static TimerQueue& queue = *[] {
    auto created = std::make_unique<TimerQueue>();
    created->Close();
    created->state_->queue = nullptr;
    created->state_->usable = true;
    return created.release();
  }();
  return queue;
}

bool TimerQueue::Usable() const {
  return state_->usable;
}

TimerPtr TimerQueue::Start(std::uint32_t due_ms, std::uint32_t period_ms, Callback callback) {
  if (!Usable()) return nullptr;
  PinLibrary();
  auto timer = std::make_shared<Timer>();
  timer->queue = state_;
  timer->callback = std::move(callback);
  timer->once = period_ms == 0;
  state_->Keep(timer);
  if (CreateTimerQueueTimer(&timer->handle, state_->queue, Timer::Run, timer.get(), due_ms,
                            period_ms, WT_EXECUTEDEFAULT)) {
    return timer;
  }
  state_->Forget(timer);
  return nullptr;
}

TimerPtr TimerQueue::StartOnTick(std::uint32_t due_ms, Callback callback) {
  return Start(due_ms, 0, std::move(callback));
}

void TimerQueue::Stop(const TimerPtr& timer, TimerStop stop) {
  if (!timer || !timer->queue->usable) return;
  State& state = *timer->queue;
  const HANDLE handle = std::exchange(timer->handle, nullptr);
  if (handle == nullptr) return;
  const HANDLE completion = stop == TimerStop::kWait ? INVALID_HANDLE_VALUE : nullptr;
  const bool over = DeleteTimerQueueTimer(state.queue, handle, completion) != 0;
  if (over || stop == TimerStop::kWait) {
    state.Forget(timer);
  } else {
    timer->LeaveOnce();
  }
}

void TimerQueue::Close() {
  if (!state_->usable.exchange(false)) return;
  const bool waits = !ProcessIsEnding() && (calling == nullptr || calling->queue != state_);
  static_cast<void>(DeleteTimerQueueEx(state_->queue, waits ? INVALID_HANDLE_VALUE : nullptr));
  if (!waits) return;  // what may still be called back stays
  const std::lock_guard lock(state_->mutex);
  state_->timers.clear();
}

}  // namespace zentavo::platform
