#include "zentavo/threads_memory/thread_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/error_of.h"
#include "tests/support/latch.h"
#include "zentavo/platform/clock.h"
#include "zentavo/platform/thread_pool.h"
#include "zentavo/platform/tick_source.h"

namespace zentavo {
namespace {

using testing::Latch;

class Item : public TXWorkItem {
 public:
  explicit Item(
      std::function<void()> work, std::function<void()> destroyed = [] {})
      : work_(std::move(work)), destroyed_(std::move(destroyed)) {}
  ~Item() override { destroyed_(); }
  void Execute() override { work_(); }

 private:
  std::function<void()> work_;
  std::function<void()> destroyed_;
};

std::unique_ptr<TXWorkItem> Does(std::function<void()> work) {
  return std::make_unique<Item>(std::move(work));
}

// Takes the place of the process-wide pool: keeps what is submitted until the test runs it.
class HeldWork {
 public:
  HeldWork() { platform::SetWorkSubmitter(Submit); }
  HeldWork(const HeldWork&) = delete;
  HeldWork& operator=(const HeldWork&) = delete;
  ~HeldWork() {
    platform::SetWorkSubmitter(nullptr);
    jobs.clear();
    refusals = 0;
  }

  static inline int refusals = 0;  // how many submissions to refuse

  std::size_t Count() const { return jobs.size(); }
  void RunFirst() {
    const auto [function, context] = jobs.front();
    jobs.erase(jobs.begin());
    function(context);
  }
  void RunAll() {
    while (!jobs.empty()) RunFirst();
  }

 private:
  static bool Submit(platform::WorkFunction function, void* context) {
    if (refusals > 0) {
      --refusals;
      return false;
    }
    jobs.emplace_back(function, context);
    return true;
  }

  static inline std::vector<std::pair<platform::WorkFunction, void*>> jobs;
};

// TickCount stands still at what the test says.
class HeldClock {
 public:
  explicit HeldClock(std::uint32_t ticks) {
    now = ticks;
    platform::SetTickSource([] { return now.load(); });
  }
  HeldClock(const HeldClock&) = delete;
  HeldClock& operator=(const HeldClock&) = delete;
  ~HeldClock() { platform::SetTickSource(nullptr); }

  static inline std::atomic<std::uint32_t> now;
};

// An item that comes due is running before it is no longer pending.
void WaitUntilIdle(const TXThreadPool& pool) {
  while (pool.PendingCount() != 0 || pool.CurThreads() != 0) std::this_thread::yield();
}

// Far enough that the system's timers do not come in between; the tests call CheckDelay.
constexpr std::int32_t kLater = 1'000'000;

TEST(TXThreadPool, CapOfTwoStartsTwoOfFiveAndOneWorkerDrainsTheQueue) {
  HeldWork work;
  TXThreadPool pool(2);
  std::string order;
  std::vector<std::int32_t> running;
  for (const char name : {'a', 'b', 'c', 'd', 'e'}) {
    pool.Run(Does([&, name] {
      order += name;
      running.push_back(pool.CurThreads());
    }));
  }
  EXPECT_EQ(work.Count(), 2U);
  EXPECT_EQ(pool.CurThreads(), 2);
  EXPECT_EQ(pool.PendingCount(), 3);
  work.RunFirst();
  EXPECT_EQ(order, "acde");
  EXPECT_EQ(pool.CurThreads(), 1);
  EXPECT_EQ(pool.PendingCount(), 0);
  work.RunFirst();
  EXPECT_EQ(order, "acdeb");
  EXPECT_EQ(running, (std::vector<std::int32_t>{2, 2, 2, 2, 1}));
  EXPECT_EQ(pool.CurThreads(), 0);
}

TEST(TXThreadPool, ItemThatRaisesLetsTheNextOneRun) {
  HeldWork work;
  TXThreadPool pool(1);
  int destroyed = 0;
  bool ran = false;
  Item kept([] { throw std::runtime_error("ignored"); });
  pool.Run(kept);
  pool.Run(std::make_unique<Item>([] { throw 1; }, [&] { ++destroyed; }));
  pool.Run(Does([&] { ran = true; }));
  work.RunAll();
  EXPECT_FALSE(kept.CompletedOK);
  EXPECT_EQ(destroyed, 1);
  EXPECT_TRUE(ran);
  EXPECT_EQ(pool.CurThreads(), 0);
}

TEST(TXThreadPool, ItemIsDestroyedAfterItsWorkerTookTheNextUnlessItIsKept) {
  HeldWork work;
  TXThreadPool pool(1);
  std::int32_t running_at_end = -1;
  pool.Run(std::make_unique<Item>([] {}, [&] { running_at_end = pool.CurThreads(); }));
  int destroyed = 0;
  auto kept = std::make_unique<Item>([] {}, [&] { ++destroyed; });
  Item* keeps_itself = nullptr;
  auto owned = std::make_unique<Item>([&] { keeps_itself->SetStartTime(7); }, [&] { ++destroyed; });
  keeps_itself = owned.get();
  pool.Run(*kept);
  pool.Run(std::move(owned));
  work.RunAll();
  EXPECT_EQ(running_at_end, 1) << "the next item was taken already, so the place is still held";
  EXPECT_TRUE(kept->CompletedOK);
  EXPECT_EQ(kept->Pool(), &pool);
  EXPECT_EQ(destroyed, 0);
  const std::unique_ptr<Item> taken_back(keeps_itself);
  EXPECT_TRUE(taken_back->CompletedOK);
  pool.Run(*kept);
  work.RunAll();
  EXPECT_EQ(destroyed, 0);
}

TEST(TXThreadPool, DelayedItemComesByTheTimerNotBeforeItsTime) {
  TXThreadPool pool(1);
  std::uint32_t ran_at = 0;
  const std::uint32_t start = platform::TickCount();
  pool.RunDelay(Does([&] { ran_at = platform::TickCount(); }), 40);
  WaitUntilIdle(pool);
  EXPECT_GE(ran_at - start, 40U - 9U);
}

TEST(TXThreadPool, DelayedItemWhoseStartIsRefusedIsDestroyedAndTheOthersRun) {
  HeldClock clock(5'000);
  HeldWork work;
  TXThreadPool pool(2);
  bool destroyed = false;
  bool ran = false;
  pool.RunDelay(Does([&] { ran = true; }), kLater);
  pool.RunDelay(std::make_unique<Item>([] {}, [&] { destroyed = true; }), kLater);
  HeldWork::refusals = 1;
  clock.now += kLater;
  pool.CheckDelay();
  EXPECT_TRUE(destroyed) << "the later one of the batch, started first";
  work.RunAll();
  EXPECT_TRUE(ran);
}

TEST(TXThreadPool, RefusedStartRaisesAndLosesAPlace) {
  TXThreadPool pool(1);
  bool destroyed = false;
  platform::SetWorkSubmitter([](platform::WorkFunction, void*) { return false; });
  EXPECT_EQ(
      testing::ErrorOf([&] { pool.Run(std::make_unique<Item>([] {}, [&] { destroyed = true; })); }),
      "Operation Failed to start in Windows ThreadPool");
  EXPECT_THROW(ExecuteInThreadPool(Does([] {})), Exception);
  platform::SetWorkSubmitter(nullptr);
  EXPECT_TRUE(destroyed);
  EXPECT_EQ(pool.CurThreads(), 1);
  Item waits([] {});
  pool.Run(waits);
  EXPECT_EQ(pool.PendingCount(), 1);
}

TEST(TXThreadPool, DestructionNeitherRunsNorDestroysWhatWaits) {
  int calls = 0;
  std::vector<std::unique_ptr<TXWorkItem>> items;
  const auto waiting = [&] {
    items.push_back(std::make_unique<Item>([&] { ++calls; }, [&] { ++calls; }));
    return items.back().get();
  };
  {
    TXThreadPool pool(0);
    pool.Run(*waiting());
    pool.Run(std::unique_ptr<TXWorkItem>(waiting()));
    pool.RunDelay(std::unique_ptr<TXWorkItem>(waiting()), kLater);
    EXPECT_EQ(pool.PendingCount(), 3);
  }
  EXPECT_EQ(calls, 0);
}

// The plain way: from the last element backwards to the first that is not due later.
void InsertPlainly(std::vector<std::pair<std::uint32_t, int>>& list, std::uint32_t due, int name) {
  auto place = list.end();
  while (place != list.begin() && static_cast<std::int32_t>(std::prev(place)->first - due) > 0) {
    --place;
  }
  list.insert(place, {due, name});
}

// An item is due from 9 ms before its time on; of those due together the last one runs first.
TEST(TXThreadPoolDelay, OrderHoldsAcrossTheWrapOfTheTicks) {
  constexpr std::uint32_t kStart = 0xFFFFFFFF - kLater;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    HeldWork work;
    HeldClock clock(kStart);
    std::mt19937 random(seed);
    TXThreadPool pool(1);
    std::vector<std::pair<std::uint32_t, int>> plain;
    std::vector<int> order;
    for (int name = 0; name < 60; ++name) {
      const auto delay = static_cast<std::int32_t>(kLater - 20 + random() % 40);
      InsertPlainly(plain, kStart + static_cast<std::uint32_t>(delay), name);
      pool.RunDelay(Does([&, name] { order.push_back(name); }), delay);
    }
    std::vector<int> expected;
    for (std::uint32_t now = kStart + kLater - 40; now != kStart + kLater + 40;
         now += seed % 2 == 0 ? 1 : 5) {
      clock.now = now;
      pool.CheckDelay();
      work.RunAll();
      const auto due = std::find_if(plain.begin(), plain.end(), [&](const auto& entry) {
        return static_cast<std::int32_t>(entry.first - now) > 9;
      });
      std::transform(std::make_reverse_iterator(due), plain.rend(), std::back_inserter(expected),
                     [](const auto& entry) { return entry.second; });
      plain.erase(plain.begin(), due);
      EXPECT_EQ(order, expected) << "seed " << seed << " at " << now;
    }
    EXPECT_TRUE(plain.empty());
  }
}

TEST(TXThreadPoolDelay, ZeroDelayInFrontSetsNoTimer) {
  TXThreadPool pool(1);
  std::string order;
  Latch ran(2);
  const auto delay = [&](char name, std::int32_t ms) {
    pool.RunDelay(Does([&, name] { order += name, ran.Arrive(); }), ms);
  };
  delay('b', 1);
  delay('a', -20);  // takes the timer away
  Latch later(1);
  const platform::TimerPtr timer =
      platform::TimerQueue::Default().Start(40, 0, [&] { later.Arrive(); });
  later.Wait();
  platform::TimerQueue::Stop(timer, platform::TimerStop::kWait);
  EXPECT_EQ(pool.PendingCount(), 2);
  pool.CheckDelay();
  ran.Wait();
  EXPECT_EQ(order, "ba");
  WaitUntilIdle(pool);
}

TEST(TXThreadPoolDelay, DestructionWaitsForARunningCheck) {
  static testing::RunningCall check;
  Item waits([] {});
  auto pool = std::make_unique<TXThreadPool>(0);
  pool->RunDelay(std::unique_ptr<TXWorkItem>(&waits), 1);
  platform::SetTickSource([] {
    check.Run();
    return std::uint32_t{0};
  });
  EXPECT_TRUE(check.HasLeftAfter([&] {
    platform::SetTickSource(nullptr);
    pool.reset();
  }));
}

TEST(TXThreadPoolStress, CapHoldsUnderLoadFromManyThreads) {
  constexpr int kThreads = 4;
  constexpr int kItems = 1500;
  constexpr int kCap = 3;
  TXThreadPool pool(kCap);
  std::atomic<int> running{0};
  std::atomic<int> most{0};
  std::atomic<int> destroyed{0};
  const auto work = [&] {
    const int now = ++running;
    for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
    }
    --running;
  };
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
      threads.emplace_back([&, thread] {
        for (int i = 0; i < kItems; ++i) {
          auto item = std::make_unique<Item>(work, [&] { ++destroyed; });
          if (i % 8 == thread) {
            pool.RunDelay(std::move(item), 1 + i % 5);
          } else {
            pool.Run(std::move(item));
          }
        }
      });
    }
  }
  while (destroyed != kThreads * kItems) std::this_thread::yield();
  WaitUntilIdle(pool);
  EXPECT_LE(most, kCap);
}

TEST(ExecuteInThreadPool, ItemsMayWaitForOneAnother) {
  constexpr int kItems = 24;
  Latch all_there(kItems);
  Latch all_gone(kItems);
  const auto meet = [&] {
    all_there.ArriveAndWait();
    all_gone.Arrive();
  };
  for (int i = 0; i < kItems; i += 2) {
    ExecuteInThreadPool(Does(meet));
    Does(meet).release()->Run();
  }
  all_gone.Wait();
}

}  // namespace
}  // namespace zentavo
