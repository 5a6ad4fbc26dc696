#include "zentavo/platform/named_mutex.h"

#include <pthread.h>
#include <sys/mman.h>
#include <time.h>
#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

#include <atomic>
#include <cerrno>
#include <thread>

#include "zentavo/platform/linux/shared_file.h"

namespace zentavo::platform {

namespace {

pthread_mutex_t* MapMutex(int file) {
  void* view = mmap(nullptr, sizeof(pthread_mutex_t), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  return view == MAP_FAILED ? nullptr : static_cast<pthread_mutex_t*>(view);
}

// The mutex is known to every process that maps it, and the system tells the next owner of the
// death of the last.
SystemError PrepareMutex(int file) {
  pthread_mutex_t* mutex = MapMutex(file);
  if (mutex == nullptr) return LastSystemError();
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
  const int error = pthread_mutex_init(mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
  munmap(mutex, sizeof *mutex);
  return static_cast<SystemError>(error);
}

timespec DeadlineIn(std::uint32_t milliseconds) {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  const long nanoseconds = time.tv_nsec + static_cast<long>(milliseconds % 1000) * 1'000'000;
  time.tv_sec += milliseconds / 1000 + nanoseconds / 1'000'000'000;
  time.tv_nsec = nanoseconds % 1'000'000'000;
  return time;
}

// The thread sanitizer of g++ 12 sees every call on a mutex but the one with a choice of clock.
#ifdef __SANITIZE_THREAD__
void TellSanitizer(pthread_mutex_t* mutex) {
  __tsan_mutex_pre_lock(mutex, __tsan_mutex_write_reentrant);
  __tsan_mutex_post_lock(mutex, __tsan_mutex_write_reentrant, 1);
}
#else
void TellSanitizer(pthread_mutex_t*) {}
#endif

int WaitForMutex(pthread_mutex_t* mutex, std::uint32_t timeout_ms) {
  if (timeout_ms == NamedMutex::kForever) return pthread_mutex_lock(mutex);
  if (timeout_ms == 0) return pthread_mutex_trylock(mutex);
  const timespec deadline = DeadlineIn(timeout_ms);
  const int error = pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &deadline);
  if (error == 0 || error == EOWNERDEAD) TellSanitizer(mutex);
  return error;
}

}  // namespace

struct NamedMutex::State {
  int file = -1;
  pthread_mutex_t* mutex = nullptr;
  // Who holds the mutex through this object, and how often; the latter is the owner's alone.
  std::atomic<std::thread::id> owner{};
  int locks = 0;

  bool HeldHere() const { return owner == std::this_thread::get_id(); }
  void Take() {
    if (!HeldHere()) locks = 0;
    owner = std::this_thread::get_id();
    ++locks;
  }
};

NamedMutex::NamedMutex() : state_(std::make_unique<State>()) {}

NamedMutex::~NamedMutex() {
  if (state_->mutex == nullptr) return;
  while (state_->HeldHere()) Unlock();
  munmap(state_->mutex, sizeof *state_->mutex);
  CloseSharedFile(state_->file);
}

SystemError NamedMutex::Open(std::u16string_view name) {
  int file = -1;
  const SystemError error =
      OpenSharedFile(SharedKind::kMutex, name, sizeof(pthread_mutex_t), PrepareMutex, file);
  if (error != 0) return error;
  state_->mutex = MapMutex(file);
  if (state_->mutex == nullptr) {
    const SystemError mapping_error = LastSystemError();
    CloseSharedFile(file);
    return mapping_error;
  }
  state_->file = file;
  return 0;
}

MutexWait NamedMutex::Lock(std::uint32_t timeout_ms) {
  if (state_->mutex == nullptr) return MutexWait::kFailed;
  switch (WaitForMutex(state_->mutex, timeout_ms)) {
    case 0: state_->Take(); return MutexWait::kLocked;
    case EOWNERDEAD:
      state_->owner = std::thread::id();
      pthread_mutex_consistent(state_->mutex);
      pthread_mutex_unlock(state_->mutex);
      return MutexWait::kAbandoned;
    case EBUSY:
    case ETIMEDOUT: return MutexWait::kTimedOut;
    default: return MutexWait::kFailed;
  }
}

void NamedMutex::Unlock() {
  if (!state_->HeldHere()) return;
  if (--state_->locks == 0) state_->owner = std::thread::id();
  pthread_mutex_unlock(state_->mutex);
}

}  // namespace zentavo::platform
