// Named memory that several processes share, with an optional lock.
//
//   TXMemoryMap map(u"Suite.Counters", 4096, true);
//   auto* counters = static_cast<std::int32_t*>(map.MapMemory(0, 4096));
//   if (map.Lock(1000)) {
//     ++counters[0];
//     map.UnLock();
//   }
//
// Whoever comes first decides the size and finds zeros. The name lasts until its last user has
// closed it or died. What names are taken, and how long they may be,
// zentavo/platform/shared_memory.h says.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "zentavo/framework/text.h"
#include "zentavo/platform/named_mutex.h"
#include "zentavo/platform/shared_memory.h"

namespace zentavo {

// Neither copied nor moved. Lock and UnLock may be called from any thread, the rest from one at a
// time.
class ZENTAVO_API TXMemoryMap {
 public:
  static constexpr std::int32_t kForever = -1;

  // Opens or creates the memory of that name, of `asize` bytes, 1 at least, where it is new; with
  // `amutex` also the mutex named `AName` + "Mutex", which is held meanwhile. Raises Exception
  // "System Error on MemoryMap %d." with the system's error code.
  TXMemoryMap(StringView AName, std::int32_t asize, bool amutex);
  TXMemoryMap(const TXMemoryMap&) = delete;
  TXMemoryMap& operator=(const TXMemoryMap&) = delete;
  ~TXMemoryMap();

  // Unmaps the current view, then maps `size` bytes (0: to the end) from `offset`, a multiple of
  // XAllocationGranularity, and returns the view, which lasts until the next MapMemory or UnMap. A
  // negative offset maps nothing and returns null. Raises Exception "System Error %d" with the
  // system's error code.
  void* MapMemory(std::int64_t offset, std::int32_t size);
  void UnMap();
  void* Memory() const { return FMemory; }  // the current view, null when there is none

  // Waits at most `timeout` milliseconds (0: tries once, -1: as long as it takes) for the mutex and
  // returns whether the calling thread holds it now; true at once without a mutex. False also once
  // after an owner died: the mutex is free again, but what it guards may be half written. Held
  // several times, it is to be given up as often.
  bool Lock(std::int32_t timeout);
  // Does nothing when the calling thread does not hold the mutex.
  void UnLock();

 private:
  platform::SystemError OpenMutex(StringView name);
  platform::SystemError OpenMemory(StringView name, std::int32_t size);

  platform::SharedMemory FHandle;
  std::unique_ptr<platform::NamedMutex> FMutexHandle;  // null without a mutex
  void* FMemory = nullptr;
  std::size_t mapped_size_ = 0;
};

// The bytes from the page that holds `P` to the end of the mapped region it lies in: the real size
// of a view whose memory another process made. 0 when nothing is mapped there; a region beyond
// 2,147,483,647 bytes counts as that. May be called from any thread.
ZENTAVO_API std::int32_t ActualMapSize(const void* P);

}  // namespace zentavo
