#include "zentavo/threads_memory/timer.h"

#include <memory>
#include <utility>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"
#include "zentavo/platform/system_error.h"

namespace zentavo {

namespace {

using platform::TimerQueue;
using platform::TimerStop;

// Lives until the process ends, whatever static objects are destroyed before.
std::unique_ptr<TimerQueue>& SharedQueue() {
  static std::unique_ptr<TimerQueue>& queue = *new std::unique_ptr<TimerQueue>;
  return queue;
}

TimerQueue& UsableQueue() {
  std::unique_ptr<TimerQueue>& queue = SharedQueue();
  if (!queue || !queue->Usable()) queue = std::make_unique<TimerQueue>();
  return *queue;
}

std::uint32_t Milliseconds(std::int32_t value) {
  return static_cast<std::uint32_t>(value);
}

}  // namespace

TXTimer::~TXTimer() {
  StopTimer();
  for (const platform::TimerPtr& timer : left_ticking_) TimerQueue::Stop(timer, TimerStop::kWait);
}

void TXTimer::Execute() {
  if (OnTimer) OnTimer(*this);
}

void TXTimer::StartTimer(std::int32_t period, std::int32_t duetime) {
  if (period > 0) FPeriod = period;
  if (FTimer) left_ticking_.push_back(FTimer);
  FTimer = UsableQueue().Start(Milliseconds(duetime < 0 ? FPeriod : duetime), Milliseconds(FPeriod),
                               [this] { Tick(); });
  if (!FTimer) {
    throw Exception(Format(u"Timer not started: System Error %d", {platform::LastSystemError()}));
  }
}

void TXTimer::StopTimer() {
  TimerQueue::Stop(std::exchange(FTimer, nullptr), TimerStop::kWait);
}

void TXTimer::Tick() noexcept {
  try {
    Execute();
  } catch (...) {
    // There is nobody to report to.
  }
}

void FinalizeTimers() {
  SharedQueue().reset();
}

}  // namespace zentavo
