// A periodic timer.
//
//   TXTimer timer;
//   timer.OnTimer = [](TXTimer&) { Refresh(); };
//   timer.StartTimer(1000, -1);  // after a second, then every second
//   ...
//   timer.StopTimer();           // no call runs when this returns
//
// All timers share one timer queue of the process, made by the first StartTimer and deleted when
// the library unloads. The calls come on the threads of the process-wide pool, so that a handler
// may run while the owner uses the object, and on Windows while an earlier call still runs. What a
// timer does about late ticks, and about fork, zentavo/platform/timer_queue.h says.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "zentavo/platform/export.h"
#include "zentavo/platform/timer_queue.h"

namespace zentavo {

// Neither copied nor moved. Its operations are called by one thread at a time, except Execute.
class ZENTAVO_API TXTimer {
 public:
  using TNotifyEvent = std::function<void(TXTimer& Sender)>;

  TXTimer() = default;
  TXTimer(const TXTimer&) = delete;
  TXTimer& operator=(const TXTimer&) = delete;
  // Stops every start of this timer; no Execute runs afterwards. A descendant that overrides
  // Execute calls StopTimer in its own destructor: later its part of the object is gone.
  virtual ~TXTimer();

  // Called on each tick. The default calls OnTimer, if set. An exception that leaves it is
  // swallowed.
  virtual void Execute();

  // Ticks after `duetime` milliseconds, or after the period when that is negative, then every
  // `period`. A period of 0 or less keeps the previous one; without one the timer ticks once.
  // A second start without StopTimer leaves the first one ticking until the timer is destroyed;
  // callers stop before they start again. The first starts of the process should not race. Raises
  // Exception "Timer not started: System Error %d".
  void StartTimer(std::int32_t period, std::int32_t duetime);
  // Returns after a running call has ended; none runs afterwards. Does nothing when stopped. Not to
  // be called from Execute or OnTimer.
  void StopTimer();

  bool Running() const { return FTimer != nullptr; }
  std::int32_t Period() const { return FPeriod; }

 private:
  void Tick() noexcept;

  platform::TimerPtr FTimer;
  std::int32_t FPeriod = 0;

 public:
  TNotifyEvent OnTimer;  // not to be changed while the timer runs

 private:
  std::vector<platform::TimerPtr> left_ticking_;
};

// Deletes the shared queue with all timers, after their running calls have ended.
void FinalizeTimers();

}  // namespace zentavo
