#include "zentavo/threads_memory/memory_map.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"

namespace zentavo {

namespace {

using platform::MutexWait;
using platform::NamedMutex;
using platform::SystemError;

constexpr StringView kMutexSuffix = u"Mutex";

// Holds the mutex, if there is one, for a scope. An earlier owner's death does not matter here: no
// content is read.
class Held {
 public:
  explicit Held(NamedMutex* mutex) : mutex_(mutex) {
    while (mutex_ != nullptr && wait_ == MutexWait::kAbandoned) {
      wait_ = mutex_->Lock(NamedMutex::kForever);
    }
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() {
    if (wait_ == MutexWait::kLocked) mutex_->Unlock();
  }

 private:
  NamedMutex* mutex_;
  MutexWait wait_ = MutexWait::kAbandoned;
};

}  // namespace

TXMemoryMap::TXMemoryMap(StringView AName, std::int32_t asize, bool amutex) {
  SystemError error = amutex ? OpenMutex(String(AName).append(kMutexSuffix)) : 0;
  if (error == 0) error = OpenMemory(AName, asize);
  if (error != 0) throw Exception(Format(u"System Error on MemoryMap %d.", {error}));
}

TXMemoryMap::~TXMemoryMap() {
  UnMap();
}

SystemError TXMemoryMap::OpenMutex(StringView name) {
  FMutexHandle = std::make_unique<NamedMutex>();
  return FMutexHandle->Open(name);
}

// A negative size is refused as the size 0 is.
SystemError TXMemoryMap::OpenMemory(StringView name, std::int32_t size) {
  const Held held(FMutexHandle.get());
  return FHandle.Open(name, static_cast<std::uint32_t>(std::max(size, 0)));
}

void* TXMemoryMap::MapMemory(std::int64_t offset, std::int32_t size) {
  UnMap();
  if (offset < 0) return nullptr;
  SystemError error = 0;
  // Sign-extended, a negative size is one that no memory has.
  const auto bytes = static_cast<std::size_t>(size);
  FMemory = FHandle.MapView(static_cast<std::uint32_t>(offset), bytes, error);
  if (FMemory == nullptr) throw Exception(Format(u"System Error %d", {error}));
  mapped_size_ = bytes;
  return FMemory;
}

void TXMemoryMap::UnMap() {
  if (FMemory != nullptr) platform::UnmapView(std::exchange(FMemory, nullptr), mapped_size_);
}

bool TXMemoryMap::Lock(std::int32_t timeout) {
  return FMutexHandle == nullptr ||
         FMutexHandle->Lock(static_cast<std::uint32_t>(timeout)) == MutexWait::kLocked;
}

void TXMemoryMap::UnLock() {
  if (FMutexHandle != nullptr) FMutexHandle->Unlock();
}

std::int32_t ActualMapSize(const void* P) {
  constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(platform::MappedSize(P), kMost));
}

}  // namespace zentavo
