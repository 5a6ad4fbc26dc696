#include "zentavo/threads_memory/timer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "support/latch.h"

namespace zentavo {
namespace {

using testing::Counter;
using testing::Latch;

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// Returns after `ms` milliseconds by a timer of the same kind as those under test.
void WaitByTimer(std::int32_t ms) {
  Counter ticks;
  TXTimer timer;
  timer.OnTimer = [&](TXTimer&) { ticks.Count(); };
  timer.StartTimer(0, ms);
  ticks.WaitFor(1);
  timer.StopTimer();
}

TEST(TXTimer, FirstTickComesAfterThePeriodOrTheDueTime) {
  struct Row {
    std::int32_t period, due_time;
    int ticks;
    milliseconds earliest;
  };
  for (const Row& row : {Row{10, -1, 3, milliseconds(30)}, Row{5, 20, 3, milliseconds(30)},
                         Row{0, 15, 1, milliseconds(15)}, Row{1, 0, 20, milliseconds(19)}}) {
    Counter ticks;
    TXTimer timer;
    timer.OnTimer = [&](TXTimer& sender) {
      EXPECT_EQ(&sender, &timer);
      ticks.Count();
      throw std::runtime_error("ignored");
    };
    const auto start = steady_clock::now();
    timer.StartTimer(row.period, row.due_time);
    ticks.WaitFor(row.ticks);
    // Windows rounds to the ticks of its clock, which may lie a millisecond before the start.
    EXPECT_GE(steady_clock::now() - start, row.earliest - milliseconds(1)) << row.due_time;
    timer.StopTimer();
  }
}

TEST(TXTimer, WithoutAPeriodItTicksOnceOrKeepsTheLast) {
  Counter ticks;
  TXTimer timer;
  timer.OnTimer = [&](TXTimer&) { ticks.Count(); };
  timer.StopTimer();
  timer.StartTimer(-5, 1);
  ticks.WaitFor(1);
  WaitByTimer(10);
  timer.StopTimer();
  EXPECT_FALSE(timer.Running());
  EXPECT_EQ(ticks.Value(), 1);
  timer.StartTimer(3, 1'000'000);
  timer.StopTimer();
  timer.StartTimer(0, 0);
  EXPECT_EQ(timer.Period(), 3);
  ticks.WaitFor(3);
}

TEST(TXTimer, StopWaitsForARunningCallAndNoneFollows) {
  class Slow : public TXTimer {
   public:
    ~Slow() override { StopTimer(); }
    void Execute() override {
      if (calls++ == 0) first.Run();
    }

    std::atomic<int> calls{0};
    testing::RunningCall first;
  };
  Slow timer;
  timer.StartTimer(1, 0);
  EXPECT_TRUE(timer.first.HasLeftAfter([&] { timer.StopTimer(); }));
  const int calls = timer.calls;
  WaitByTimer(10);
  EXPECT_EQ(timer.calls, calls);
}

TEST(TXTimer, SecondStartLeavesTheFirstTickingUntilDestruction) {
  Counter ticks;
  auto timer = std::make_unique<TXTimer>();
  timer->OnTimer = [&](TXTimer&) { ticks.Count(); };
  timer->StartTimer(1, 0);
  timer->StartTimer(1'000'000, -1);
  timer->StopTimer();
  ticks.WaitFor(ticks.Value() + 3);
  timer.reset();
  const int count = ticks.Value();
  WaitByTimer(10);
  EXPECT_EQ(ticks.Value(), count);
}

TEST(TXTimer, StartsStopsAndEndsWhileTicking) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 100;
  TXTimer first;  // the first start of the process does not race
  first.StartTimer(1, 0);
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([] {
      for (int round = 0; round < kRounds; ++round) {
        auto ticks = std::make_unique<Counter>();
        TXTimer timer;
        timer.OnTimer = [&](TXTimer&) { ticks->Count(); };
        timer.StartTimer(1, 0);
        if (round % 2 == 0) ticks->WaitFor(1);
        timer.StopTimer();
        ticks.reset();
      }
    });
  }
}

}  // namespace
}  // namespace zentavo
