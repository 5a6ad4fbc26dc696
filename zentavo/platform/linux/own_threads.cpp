#include "zentavo/platform/linux/own_threads.h"

#include <dlfcn.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <memory>
#include <new>

namespace zentavo::platform {

namespace {

constinit std::atomic<std::uint32_t> fork_generation{0};

void CountFork() {
  fork_generation.fetch_add(1, std::memory_order_relaxed);
}

// Opened once more with RTLD_NODELETE, the library outlasts every dlclose. Where it is part of the
// program there is nothing to pin.
bool PinAndWatchForks() {
  Dl_info own{};
  if (dladdr(reinterpret_cast<const void*>(&CountFork), &own) != 0) {
    dlopen(own.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  }
  return pthread_atfork(nullptr, nullptr, CountFork) == 0;
}

// Blocks all signals but those of the thread's own faults, for the threads started meanwhile.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
      sigdelset(&all, fault);
    }
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_{};
};

struct Start {
  void (*function)(void*);
  void* context;
};

void* RunThread(void* start) {
  const Start taken = *std::unique_ptr<Start>(static_cast<Start*>(start));
  taken.function(taken.context);
  return nullptr;
}

}  // namespace

bool StartOwnThread(void (*function)(void*), void* context) {
  static const bool watched = PinAndWatchForks();
  std::unique_ptr<Start> start(new (std::nothrow) Start{function, context});
  if (!watched || !start) return false;
  const SignalsBlocked blocked;
  pthread_t thread{};
  if (pthread_create(&thread, nullptr, RunThread, start.get()) != 0) return false;
  static_cast<void>(start.release());  // the thread's now
  pthread_detach(thread);
  return true;
}

std::uint32_t ForkGeneration() {
  return fork_generation.load(std::memory_order_relaxed);
}

}  // namespace zentavo::platform
