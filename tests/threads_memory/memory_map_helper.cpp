// The second process of the memory map's tests: memory_map_helper NAME COMMAND ROUNDS.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#ifdef _WIN32
#include <process.h>
#define getpid _getpid
#else
#include <unistd.h>
#endif

#include "zentavo/platform/console.h"
#include "zentavo/threads_memory/memory_map.h"

namespace {

using zentavo::TXMemoryMap;

void Count(TXMemoryMap& map, std::int32_t* numbers, int rounds) {
  for (int round = 0; round < rounds; ++round) {
    while (!map.Lock(TXMemoryMap::kForever)) {
    }
    ++numbers[0];
    map.UnLock();
  }
}

// Leaves the mutex only by being killed.
[[noreturn]] void Hold(TXMemoryMap& map, std::int32_t* numbers) {
  map.Lock(TXMemoryMap::kForever);
  std::atomic_ref(numbers[1]).store(getpid());
  for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments = zentavo::platform::ProgramArguments(argc, argv);
  if (arguments.size() != 3) return EXIT_FAILURE;
  TXMemoryMap map(zentavo::FromUtf8(arguments[0]), 4096, true);
  auto* numbers = static_cast<std::int32_t*>(map.MapMemory(0, 4096));
  if (arguments[1] == "hold") Hold(map, numbers);
  Count(map, numbers, std::stoi(arguments[2]));
  return EXIT_SUCCESS;
}
