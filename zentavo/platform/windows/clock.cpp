#include "zentavo/platform/clock.h"

#include <windows.h>

#include <memory>
#include <type_traits>

#include "zentavo/platform/tick_source.h"

namespace zentavo::platform {

namespace {

struct CloseSystemHandle {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseSystemHandle>;

constexpr DWORD kQueryAccess = 96;  // query and set information, as older systems want it

std::uint64_t Units(const FILETIME& time) {
  return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

std::int64_t SumOf(const FILETIME& kernel, const FILETIME& user) {
  return static_cast<std::int64_t>(Units(kernel) + Units(user));
}

using QueryCycles = BOOL(WINAPI*)(HANDLE, PULONG64);

QueryCycles FindQueryCycles() {
  const HMODULE system = GetModuleHandleW(L"kernel32.dll");
  if (system == nullptr) return nullptr;
  const auto found = reinterpret_cast<void*>(GetProcAddress(system, "QueryThreadCycleTime"));
  return reinterpret_cast<QueryCycles>(found);
}

}  // namespace

std::uint32_t SystemTickCount() {
  return GetTickCount();
}

LocalTime CurrentLocalTime() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

std::uint32_t CurrentThreadNumber() {
  return GetCurrentThreadId();
}

std::int64_t ThreadTime(std::uint32_t thread_number) {
  const Handle thread(OpenThread(kQueryAccess, FALSE, thread_number));
  if (!thread || GetProcessIdOfThread(thread.get()) != GetCurrentProcessId()) return 0;
  FILETIME created{}, ended{}, kernel{}, user{};
  if (!GetThreadTimes(thread.get(), &created, &ended, &kernel, &user)) return 0;
  return SumOf(kernel, user);
}

std::int64_t ProcessTime() {
  FILETIME created{}, ended{}, kernel{}, user{};
  if (!GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user)) return 0;
  return SumOf(kernel, user);
}

std::int64_t ThreadCycles() {
  static const QueryCycles query = FindQueryCycles();
  ULONG64 cycles = 0;
  if (query == nullptr || !query(GetCurrentThread(), &cycles)) return -1;
  return static_cast<std::int64_t>(cycles);
}

// The system's kernel time counts the idle time too.
bool ReadSystemTimes(SystemTimes& times) {
  FILETIME idle{}, kernel{}, user{};
  if (!GetSystemTimes(&idle, &kernel, &user)) return false;
  times.total = Units(kernel) + Units(user);
  times.idle = Units(idle);
  return true;
}

}  // namespace zentavo::platform
