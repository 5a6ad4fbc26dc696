#include "zentavo/framework/monitor.h"

#include <gtest/gtest.h>

#include <future>
#include <vector>

#include "tests/support/latch.h"
#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

using testing::OnAnotherThread;

bool EntersAndLeaves(TMonitor& monitor, std::int32_t timeout_ms) {
  const bool entered = monitor.Enter(timeout_ms);
  if (entered) monitor.Exit();
  return entered;
}

TEST(TMonitor, OnlyTheOwnerLeaves) {
  TMonitor monitor;
  EXPECT_THROW(monitor.Exit(), Exception);
  const MonitorLock lock(monitor);
  OnAnotherThread([&] { EXPECT_THROW(monitor.Exit(), Exception); });
}

TEST(TMonitor, WaitersGetTheLockWhenItIsLeft) {
  for (const std::int32_t timeout_ms : {TMonitor::kForever, 600'000}) {
    TMonitor monitor;
    monitor.Enter();
    std::promise<void> started;
    std::future<bool> waiter = std::async(std::launch::async, [&] {
      started.set_value();
      return EntersAndLeaves(monitor, timeout_ms);
    });
    started.get_future().wait();
    monitor.Exit();
    EXPECT_TRUE(waiter.get());
  }
}

TEST(TMonitor, ExcludesOtherThreads) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 2000;
  TMonitor monitor;
  int count = 0;
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        for (int round = 0; round < kRounds; ++round) {
          while (!monitor.Enter(round % 3)) {
          }
          const MonitorLock again(monitor);
          ++count;
          monitor.Exit();
        }
      });
    }
  }
  EXPECT_EQ(count, kThreads * kRounds);
}

}  // namespace
}  // namespace zentavo
