#include "zentavo/platform/clock.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <future>
#include <thread>

namespace zentavo::platform {
namespace {

// Works until `reached`, for a bounded amount of work; returns whether it was reached.
bool WorkUntil(const std::function<bool()>& reached) {
  volatile unsigned sink = 0;
  for (int round = 0; round < 100'000; ++round) {
    if (reached()) return true;
    for (unsigned i = 0; i < 100'000; ++i) sink = sink + i;
  }
  return false;
}

TEST(Clock, LocalTimeIsTheWallClock) {
  const auto now = [] {
    const std::time_t time = std::time(nullptr);
    return *std::localtime(&time);
  };
  std::tm before{};
  LocalTime time{};
  do {  // the hour may turn meanwhile
    before = now();
    time = CurrentLocalTime();
  } while (before.tm_hour != now().tm_hour);
  EXPECT_EQ(time.year, before.tm_year + 1900);
  EXPECT_EQ(time.month, before.tm_mon + 1);
  EXPECT_EQ(time.day, before.tm_mday);
  EXPECT_EQ(time.hour, before.tm_hour);
}

TEST(Clock, TimesRiseWithWork) {
  const std::uint32_t self = CurrentThreadNumber();
  const std::int64_t thread = ThreadTime(self);
  const std::int64_t process = ProcessTime();
  const std::uint32_t ticks = TickCount();
  EXPECT_TRUE(WorkUntil([&] { return ThreadTime(self) > thread; }));
  EXPECT_TRUE(WorkUntil([&] { return ProcessTime() > process; }));
  EXPECT_TRUE(WorkUntil([&] { return TickCount() != ticks; }));
}

TEST(ThreadTime, ReadsAnotherThread) {
  std::promise<std::uint32_t> number;
  std::promise<void> read;
  std::jthread worker([&] {
    const std::uint32_t self = CurrentThreadNumber();
    WorkUntil([&] { return ThreadTime(self) > 0; });
    number.set_value(self);
    read.get_future().wait();
  });
  EXPECT_GT(ThreadTime(number.get_future().get()), 0);
  read.set_value();
  for (const std::uint32_t nobody : {0U, 0x7FFFFFF1U, 0xFFFFFFFFU})
    EXPECT_EQ(ThreadTime(nobody), 0);
}

TEST(ThreadCycles, RiseOrAreUnknown) {
  const std::int64_t start = ThreadCycles();
  EXPECT_GE(start, -1);
  if (start == -1) GTEST_SKIP() << "the system does not tell";
  EXPECT_TRUE(WorkUntil([&] { return ThreadCycles() > start; }));
}

TEST(SystemTimes, RiseAndContainTheIdleTime) {
  SystemTimes first;
  ASSERT_TRUE(ReadSystemTimes(first));
  EXPECT_LE(first.idle, first.total);
  SystemTimes next;
  EXPECT_TRUE(WorkUntil([&] { return ReadSystemTimes(next) && next.total > first.total; }));
}

}  // namespace
}  // namespace zentavo::platform
