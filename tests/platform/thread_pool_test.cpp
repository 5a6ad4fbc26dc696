#include "zentavo/platform/thread_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "support/latch.h"

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>

#include "zentavo/platform/linux/work_queue.h"
#include "zentavo/platform/timer_queue.h"
#endif

namespace zentavo::platform {
namespace {

using testing::Latch;

#ifndef _WIN32
void CountDown(void* latch) {
  static_cast<Latch*>(latch)->Arrive();
}

using Work = std::function<void()>;

void Call(void* work) {
  (*static_cast<Work*>(work))();
}

TEST(WorkQueue, GrowsToItsLimitAndKeepsTheRestWaiting) {
  Latch entered(4);
  Latch release(1);
  std::atomic<int> done{0};
  Work pass = [&] { entered.Arrive(), release.Wait(), ++done; };
  Work count = [&] { ++done; };
  {
    WorkQueue queue({.prompt_threads = 1, .max_threads = 4});
    for (int i = 0; i < 4; ++i) ASSERT_TRUE(queue.Submit(Call, &pass));
    for (int i = 0; i < 50; ++i) ASSERT_TRUE(queue.Submit(Call, &count));
    entered.Wait();
    EXPECT_EQ(queue.Threads(), 4);
    EXPECT_EQ(done, 0);
    release.Arrive();
  }
  EXPECT_EQ(done, 54) << "the destructor runs what is queued";
}

TEST(WorkQueue, ThreadsWithoutWorkLeave) {
  WorkQueue queue({.idle = std::chrono::milliseconds(0)});
  for (int round = 0; round < 100; ++round) {
    Latch ran(1);
    ASSERT_TRUE(queue.Submit(CountDown, &ran));
    ran.Wait();
    if (round % 10 == 0) queue.WaitUntilEmpty();
  }
  queue.WaitUntilEmpty();
  EXPECT_EQ(queue.Threads(), 0);
}

TEST(WorkQueue, LosesNoWorkBetweenSleepAndCall) {
  WorkQueue queue({.prompt_threads = 3});
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 3; ++thread) {
    threads.emplace_back([&] {
      for (int round = 0; round < 3000; ++round) {
        Latch ran(1);
        queue.Submit(CountDown, &ran);
        ran.Wait();
      }
    });
  }
}

// The thread sanitizer allows a forked child no threads.
#ifndef __SANITIZE_THREAD__
TEST(QueueWork, ForkedChildHasAPoolAndTimersOfItsOwn) {
  Latch ran(1);
  ASSERT_TRUE(QueueWork(CountDown, &ran));
  ran.Wait();
  TimerQueue queue;
  const TimerPtr parents = queue.Start(1'000'000, 0, [] {});
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    Latch both(2);
    const bool queued = QueueWork(CountDown, &both);
    const TimerPtr timer = TimerQueue::Default().Start(1, 0, [&] { both.Arrive(); });
    TimerQueue::Stop(parents, TimerStop::kWait);
    if (queued && timer && !queue.Usable()) both.Wait();
    _exit(queued && timer && !queue.Usable() ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}
#endif
#endif

}  // namespace
}  // namespace zentavo::platform
