#include "zentavo/platform/timer_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

#include "support/latch.h"
#include "zentavo/platform/clock.h"

namespace zentavo::platform {
namespace {

using testing::Latch;

TEST(TimerQueue, CloseWaitsForARunningCallbackAndStopsTheOthers) {
  auto queue = std::make_unique<TimerQueue>();
  testing::RunningCall call;
  std::atomic<int> others{0};
  const TimerPtr timer = queue->Start(0, 0, [&] { call.Run(); });
  const TimerPtr far = queue->Start(0xFFFFFFFE, 1, [&] { ++others; });
  ASSERT_NE(far, nullptr);
  EXPECT_TRUE(call.HasLeftAfter([&] { queue->Close(); }));
  EXPECT_FALSE(queue->Usable());
  EXPECT_EQ(queue->Start(0, 0, [&] { ++others; }), nullptr);
  queue.reset();
  TimerQueue::Stop(timer, TimerStop::kWait);
  TimerQueue::Stop(far, TimerStop::kDontWait);
  TimerQueue::Stop(nullptr, TimerStop::kWait);
  EXPECT_EQ(others, 0);
}

TEST(TimerQueue, CallbackMayCloseItsQueue) {
  auto queue = std::make_unique<TimerQueue>();
  Latch closed(1);
  const TimerPtr timer = queue->Start(0, 0, [&] {
    queue->Close();
    closed.Arrive();
  });
  closed.Wait();
  EXPECT_FALSE(queue->Usable());
}

TEST(TimerQueue, CallbackMayStopItselfWithoutWaiting) {
  for (int round = 0; round < 50; ++round) {
    Latch stopped(2);
    TimerPtr timer;
    Latch started(1);
    // What the callback holds lives as long as it may run.
    const auto held = std::make_shared<int>(round);
    timer = TimerQueue::Default().Start(0, 0, [&, held] {
      started.Wait();
      TimerQueue::Stop(timer, TimerStop::kDontWait);
      EXPECT_EQ(*held, round);
      stopped.Arrive();
    });
    started.Arrive();
    stopped.ArriveAndWait();
  }
}

TEST(TimerQueue, TimerOnATickComesWhenThatTickIsThere) {
  for (const std::uint32_t due : {1U, 2U, 7U}) {
    Latch called(1);
    const std::uint32_t start = TickCount();
    std::uint32_t came = 0;
    const TimerPtr timer = TimerQueue::Default().StartOnTick(due, [&] {
      came = TickCount();
      called.Arrive();
    });
    called.Wait();
    EXPECT_GE(came - start, due);
  }
}

// While its first callback is held, the ticks of a timer with a period collect; on Windows they
// overlap.
TEST(TimerQueue, TicksThatComeDueMeanwhileAreNotLost) {
  constexpr int kTicks = 30;
  TimerQueue queue;
  Latch release(1);
  testing::Counter ticks;
  const TimerPtr held = queue.Start(0, 1, [&] {
    ticks.Count();
    if (ticks.Value() == 1) release.Wait();
  });
  const TimerPtr later = queue.Start(kTicks, 0, [&] { release.Arrive(); });
  ticks.WaitFor(kTicks);
  TimerQueue::Stop(held, TimerStop::kWait);
}

}  // namespace
}  // namespace zentavo::platform
