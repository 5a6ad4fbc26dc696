#include "zentavo/threads_memory/memory_map.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <future>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <signal.h>
#include <unistd.h>
#endif

#include "tests/support/error_of.h"
#include "tests/support/latch.h"
#include "zentavo/foundation/helper_unit.h"
#include "zentavo/platform/clock.h"
#include "zentavo/platform/process.h"

namespace zentavo {
namespace {

using testing::ErrorOf;

constexpr std::int32_t kSize = 4096;
constexpr std::int32_t kForever = TXMemoryMap::kForever;

// A name that no other test and no other process uses.
String UniqueName() {
  static int last = 0;
  return u"Δοκιμή/" +
         FromUtf8(std::to_string(platform::CurrentThreadNumber()) + "-" +
                  std::to_string(platform::TickCount()) + "-" + std::to_string(++last));
}

std::int32_t* Numbers(TXMemoryMap& map) {
  return static_cast<std::int32_t*>(map.MapMemory(0, kSize));
}

// Runs the helper program to its end on a thread of its own; gives its exit code.
std::future<std::int32_t> StartHelper(const String& name, StringView command, int rounds = 0) {
  return std::async(std::launch::async, [=, command = String(command)] {
    const auto own = std::filesystem::path(platform::ProgramPath());
    auto path = own.parent_path() / "memory_map_helper";
    path.replace_extension(own.extension());
    const std::vector<String> arguments = {name, command, FromUtf8(std::to_string(rounds))};
    std::int32_t exit_code = -1;
    EXPECT_EQ(platform::StartProgram(path.u16string(), arguments, 0,
                                     platform::ProcessWait::kUntilEnd, exit_code),
              0U);
    return exit_code;
  });
}

std::int32_t WaitForProcessNumber(std::int32_t* numbers) {
  std::int32_t process = 0;
  while ((process = std::atomic_ref(numbers[1]).load()) == 0) std::this_thread::yield();
  return process;
}

void Kill(std::int32_t process) {
#ifdef _WIN32
  const HANDLE handle = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process));
  TerminateProcess(handle, 9);
  CloseHandle(handle);
#else
  kill(process, SIGKILL);
#endif
}

TEST(TXMemoryMap, ObjectsOfOneNameShareTheMemory) {
  const String name = UniqueName();
  TXMemoryMap first(name, kSize, false);
  TXMemoryMap second(name, 2 * kSize, false);  // the first one's size holds
  TXMemoryMap other(UniqueName(), kSize, false);
  Numbers(first)[7] = 42;
  EXPECT_EQ(Numbers(second)[7], 42);
  EXPECT_EQ(Numbers(other)[7], 0);
  EXPECT_TRUE(first.Lock(0)) << "there is no mutex";
}

TEST(TXMemoryMap, MapsPartsAndUnmaps) {
  const auto granularity = static_cast<std::int32_t>(XAllocationGranularity);
  const String name = UniqueName();
  TXMemoryMap map(name, 3 * granularity, false);
  auto* all = static_cast<char*>(map.MapMemory(0, 0));
  all[granularity] = 'x';
  auto* part = static_cast<char*>(map.MapMemory(granularity, 16));
  EXPECT_EQ(part[0], 'x');
  EXPECT_EQ(map.Memory(), part);
  EXPECT_EQ(map.MapMemory(-1, 0), nullptr);
  EXPECT_EQ(map.Memory(), nullptr);
  TXMemoryMap joined(name, 1, false);
  EXPECT_EQ(ActualMapSize(joined.MapMemory(granularity, 0)), 2 * granularity);
  EXPECT_EQ(ActualMapSize(nullptr), 0);
}

TEST(TXMemoryMap, RefusesViewsOutsideTheMemory) {
  TXMemoryMap map(UniqueName(), kSize, false);
  const auto granularity = static_cast<std::int32_t>(XAllocationGranularity);
  const struct {
    std::int64_t offset;
    std::int32_t size;
  } rows[] = {{1, 16}, {granularity, 16}, {0, 2 * granularity}, {0, -1}, {0, -granularity}};
  for (const auto& row : rows) {
    Numbers(map)[0] = 1;
    const std::string error = ErrorOf([&] { map.MapMemory(row.offset, row.size); });
    EXPECT_TRUE(error.starts_with("System Error ")) << row.offset << " " << row.size;
    EXPECT_EQ(map.Memory(), nullptr);
  }
}

TEST(TXMemoryMap, RefusesSizesAndNamesThatCannotBe) {
  struct Row {
    String name;
    std::int32_t size;
  };
  for (const Row& row : {Row{u"", kSize}, Row{u"a\\b", kSize}, Row{String(u"a\0b", 3), kSize},
                         Row{String(40'000, u'x'), kSize}, Row{UniqueName(), 0},
                         Row{UniqueName(), std::numeric_limits<std::int32_t>::min()}}) {
    for (const bool with_mutex : {false, true}) {
      const std::string error = ErrorOf([&] { TXMemoryMap(row.name, row.size, with_mutex); });
      EXPECT_TRUE(error.starts_with("System Error on MemoryMap ") && error.ends_with("."))
          << ToUtf8(row.name.substr(0, 20)) << " " << row.size << ": " << error;
    }
  }
#ifndef _WIN32
  EXPECT_EQ(ErrorOf([] { TXMemoryMap(u"", kSize, false); }), "System Error on MemoryMap 22.");
#endif
}

TEST(TXMemoryMap, MutexIsHeldByOneThreadAsOftenAsItLocked) {
  TXMemoryMap map(UniqueName(), kSize, true);
  const auto other_thread_locks = [&](std::int32_t timeout) {
    return testing::OnAnotherThread([&] {
      const bool locked = map.Lock(timeout);
      map.UnLock();
      return locked;
    });
  };
  EXPECT_TRUE(map.Lock(std::numeric_limits<std::int32_t>::max()));
  EXPECT_TRUE(map.Lock(kForever));
  EXPECT_FALSE(other_thread_locks(0));
  map.UnLock();
  EXPECT_FALSE(other_thread_locks(1));
  map.UnLock();
  map.UnLock();
  EXPECT_TRUE(other_thread_locks(kForever));
}

TEST(TXMemoryMap, TwoProcessesCountTogether) {
  constexpr int kRounds = 5000;
  const String name = UniqueName();
  TXMemoryMap map(name, kSize, true);
  std::int32_t* const numbers = Numbers(map);
  std::future<std::int32_t> helper = StartHelper(name, u"count", kRounds);
  for (int round = 0; round < kRounds; ++round) {
    ASSERT_TRUE(map.Lock(kForever));
    ++numbers[0];
    map.UnLock();
  }
  EXPECT_EQ(helper.get(), 0);
  EXPECT_EQ(numbers[0], 2 * kRounds);
}

TEST(TXMemoryMap, KilledOwnerReportsFailureAndFreesTheMutex) {
  const String name = UniqueName();
  TXMemoryMap map(name, kSize, true);
  std::future<std::int32_t> helper = StartHelper(name, u"hold");
  const std::int32_t process = WaitForProcessNumber(Numbers(map));
  EXPECT_FALSE(map.Lock(0));
  EXPECT_FALSE(map.Lock(1));
  Kill(process);
  EXPECT_FALSE(map.Lock(kForever));
  EXPECT_TRUE(map.Lock(kForever));
  map.UnLock();
  EXPECT_NE(helper.get(), 0);
}

TEST(TXMemoryMap, NameIsGoneAfterItsLastUserDied) {
  const String name = UniqueName();
  auto map = std::make_unique<TXMemoryMap>(name, kSize, true);
  std::future<std::int32_t> helper = StartHelper(name, u"hold");
  const std::int32_t process = WaitForProcessNumber(Numbers(*map));
  map.reset();
  EXPECT_EQ(Numbers(*std::make_unique<TXMemoryMap>(name, kSize, false))[1], process);
  Kill(process);
  helper.get();
  const auto granularity = static_cast<std::int32_t>(XAllocationGranularity);
  TXMemoryMap fresh(name, 2 * granularity, true);
  EXPECT_EQ(static_cast<std::int32_t*>(fresh.MapMemory(0, 0))[1], 0);
  EXPECT_EQ(ActualMapSize(fresh.Memory()), 2 * granularity);
  EXPECT_TRUE(fresh.Lock(0));
}

#ifndef _WIN32
TEST(TXMemoryMap, LastCloseRemovesTheFiles) {
  const String name = u"closes-" + FromUtf8(std::to_string(getpid()));
  const std::string file = "/dev/shm/zentavo-" + std::to_string(geteuid()) + "-";
  const auto exists = [&](const char* kind, StringView suffix) {
    return std::filesystem::exists(file + kind + ToUtf8(name) + ToUtf8(suffix));
  };
  auto first = std::make_unique<TXMemoryMap>(name, kSize, true);
  auto second = std::make_unique<TXMemoryMap>(u"Local\\" + name, kSize, true);
  first.reset();
  EXPECT_TRUE(exists("memory-", u""));
  EXPECT_TRUE(exists("mutex-", u"Mutex"));
  second.reset();
  EXPECT_FALSE(exists("memory-", u""));
  EXPECT_FALSE(exists("mutex-", u"Mutex"));
}
#endif

}  // namespace
}  // namespace zentavo
