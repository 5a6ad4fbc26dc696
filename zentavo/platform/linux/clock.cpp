#include "zentavo/platform/clock.h"

#include <linux/perf_event.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>
#include <numeric>

#include "zentavo/platform/tick_source.h"

namespace zentavo::platform {

namespace {

constexpr std::uint32_t kMaxThreadNumber = 1U << 22;  // the kernel's own limit

std::int64_t UnitsOf100ns(clockid_t clock) {
  timespec time{};
  if (clock_gettime(clock, &time) != 0) return 0;
  return std::int64_t{time.tv_sec} * 10'000'000 + time.tv_nsec / 100;
}

int OpenCycleCounter(bool user_only) {
  perf_event_attr attributes{};
  attributes.type = PERF_TYPE_HARDWARE;
  attributes.size = sizeof attributes;
  attributes.config = PERF_COUNT_HW_CPU_CYCLES;
  attributes.exclude_kernel = user_only;
  attributes.exclude_hv = user_only;
  return static_cast<int>(
      syscall(SYS_perf_event_open, &attributes, 0, -1, -1, PERF_FLAG_FD_CLOEXEC));
}

// One thread's counter, which counts from the first call on that thread until its end. Unprivileged
// processes are often allowed the cycles of user mode only.
class CycleCounter {
 public:
  CycleCounter() : handle_(OpenCycleCounter(false)) {
    if (handle_ < 0) handle_ = OpenCycleCounter(true);
  }
  ~CycleCounter() {
    if (handle_ >= 0) close(handle_);
  }
  CycleCounter(const CycleCounter&) = delete;
  CycleCounter& operator=(const CycleCounter&) = delete;

  std::int64_t Read() const {
    std::int64_t cycles = -1;
    if (handle_ < 0 || read(handle_, &cycles, sizeof cycles) != sizeof cycles) return -1;
    return cycles;
  }

 private:
  int handle_;
};

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

std::uint32_t SystemTickCount() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<std::uint32_t>(std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1'000'000);
}

LocalTime CurrentLocalTime() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  return {local.tm_year + 1900,
          local.tm_mon + 1,
          local.tm_mday,
          local.tm_hour,
          local.tm_min,
          local.tm_sec,
          static_cast<int>(now.tv_nsec / 1'000'000)};
}

std::uint32_t CurrentThreadNumber() {
  return static_cast<std::uint32_t>(gettid());
}

// The kernel numbers a thread's processor-time clock by the complement of the thread's number; the
// low bits say "one thread" (4) and "time scheduled" (2). The kernel refuses other processes'
// threads.
std::int64_t ThreadTime(std::uint32_t thread_number) {
  if (thread_number == 0 || thread_number > kMaxThreadNumber) return 0;
  return UnitsOf100ns(static_cast<clockid_t>(~thread_number << 3 | 6));
}

std::int64_t ProcessTime() {
  return UnitsOf100ns(CLOCK_PROCESS_CPUTIME_ID);
}

std::int64_t ThreadCycles() {
  thread_local const CycleCounter counter;
  return counter.Read();
}

bool ReadSystemTimes(SystemTimes& times) {
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen("/proc/stat", "re"));
  // user, nice, system, idle, waiting for input and output, interrupts, soft interrupts, stolen;
  // the guests' times that follow are part of user and nice
  std::array<unsigned long long, 8> t{};
  if (!file || std::fscanf(file.get(), "cpu %llu %llu %llu %llu %llu %llu %llu %llu", t.data(),
                           &t[1], &t[2], &t[3], &t[4], &t[5], &t[6], &t[7]) != 8) {
    return false;
  }
  times.total = std::accumulate(t.begin(), t.end(), std::uint64_t{0});
  times.idle = t[3] + t[4];
  return true;
}

}  // namespace zentavo::platform
