// Timers whose callbacks run on the threads of the process-wide pool.
//
// Times are milliseconds of a clock that never goes back. A timer with a period keeps to its grid:
// each tick counts from the first due time, so that late ticks do not add up. On Linux the
// callbacks of one timer follow one another and a tick that comes due meanwhile runs afterwards, up
// to 1000 of them; on Windows they may overlap.
//
// The first timer keeps the library loaded until the process ends. On Linux a child made by fork
// has none of its parent's timers, and those it starts run on threads of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "zentavo/platform/export.h"

namespace zentavo::platform {

// One timer. It lasts as long as its holder or its queue needs it; giving up the pointer does not
// stop it.
struct Timer;
using TimerPtr = std::shared_ptr<Timer>;

enum class TimerStop { kWait, kDontWait };

// All operations but Close and the destructor may be called from any thread.
class ZENTAVO_API TimerQueue {
 public:
  // Must not let an exception out.
  using Callback = std::function<void()>;

  TimerQueue();
  TimerQueue(const TimerQueue&) = delete;
  TimerQueue& operator=(const TimerQueue&) = delete;
  ~TimerQueue();

  // The process's own queue, which is never closed.
  static TimerQueue& Default();

  // False once closed, and in a child made by fork for a queue of its parent.
  bool Usable() const;

  // Calls `callback` after `due_ms`, then every `period_ms`; a period of 0: once. Returns null when
  // the system refuses or the queue is not usable.
  TimerPtr Start(std::uint32_t due_ms, std::uint32_t period_ms, Callback callback);
  // The same once, and earlier by what has passed of the clock's current millisecond, where the
  // system's timers are that fine: as soon as a TickCount read before is exceeded by `due_ms`.
  TimerPtr StartOnTick(std::uint32_t due_ms, Callback callback);

  // Stops `timer`; does nothing with null, a stopped one, or one of a queue that is not usable.
  // With kWait, returns only after a running callback has ended, and none runs afterwards; not to
  // be called from the timer's own callback then. With kDontWait, for timers without a period only,
  // a callback may still run or even begin. The queue need not exist any more.
  static void Stop(const TimerPtr& timer, TimerStop stop);

  // Stops all timers and returns after every running callback has ended, except that it does not
  // wait for the callback it is called from, nor where the process is ending and the system has
  // ended the threads already. No other operation may run meanwhile, except from callbacks.
  void Close();

 private:
  friend struct Timer;
  struct State;

  std::shared_ptr<State> state_;
};

}  // namespace zentavo::platform
