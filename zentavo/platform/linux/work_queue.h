// The pool of threads behind QueueWork on Linux.
//
// At first a thread starts whenever work waits and there are fewer threads than processors. Beyond
// that many, work that waits while none is taken for a while brings another thread, one at a time,
// so that short work does not crowd the processors with threads.
//
// A thread that runs out of work looks for more for some microseconds before it sleeps: while work
// comes in quickly, nobody is woken for it.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "zentavo/platform/export.h"
#include "zentavo/platform/ring_queue.h"
#include "zentavo/platform/thread_pool.h"

namespace zentavo::platform {

struct WorkQueueLimits {
  int prompt_threads = 0;  // started at once when work waits; 0: one a processor
  int max_threads = 512;
  std::chrono::milliseconds stall{1};     // how long work waits before it brings a thread more
  std::chrono::milliseconds idle{5'000};  // how long a thread without work stays
};

// All operations may be called from any thread. The destructor waits until the queued work has run
// and every thread has left.
class ZENTAVO_API WorkQueue {
 public:
  explicit WorkQueue(const WorkQueueLimits& limits = {});
  WorkQueue(const WorkQueue&) = delete;
  WorkQueue& operator=(const WorkQueue&) = delete;
  ~WorkQueue();

  // Returns false when the work cannot be kept, or when there is no thread and none can start.
  bool Submit(WorkFunction function, void* context);

  // The threads that run work or wait for it.
  int Threads();
  // Waits until no thread is left.
  void WaitUntilEmpty();

 private:
  struct Job {
    WorkFunction function;
    void* context;
  };
  using Lock = std::unique_lock<std::mutex>;

  // What brings a thread to the work that waits.
  enum class Help { kNone, kWakeWorker, kWakeSupervisor };

  // The following are called under the lock; those that take it give it up for a while.
  bool Keep(const Job& job);
  Help FindHelp();
  bool StartWorker();
  Help CallSupervisor();
  void RunOne(Lock& lock);
  // Returns whether the thread is to look for work again, false when it is to leave.
  bool AwaitWork(Lock& lock);
  void Search(Lock& lock);
  bool Sleep(Lock& lock);
  // Waits for one check; returns whether the supervisor is to leave.
  void CheckForStall(Lock& lock);
  bool SleepSupervisor(Lock& lock);
  void LeaveThread();

  void Give(Help help);
  static void WorkerThread(void* queue);
  static void SupervisorThread(void* queue);
  void RunWorker();
  void RunSupervisor();

  const WorkQueueLimits limits_;
  std::mutex mutex_;  // guards what follows; never held while work runs
  std::condition_variable work_;
  std::condition_variable supervisor_;
  std::condition_variable left_;
  RingQueue<Job> jobs_;
  std::uint64_t taken_ = 0;  // jobs taken so far
  int workers_ = 0;
  int coming_ = 0;    // workers that will look for work before they sleep
  int sleeping_ = 0;  // workers that nobody has called yet
  int calls_ = 0;     // to sleeping workers, not yet heard
  int threads_ = 0;   // workers and supervisor
  bool supervised_ = false;
  bool supervisor_sleeps_ = false;
  bool closing_ = false;
  std::atomic<std::size_t> waiting_{0};  // jobs_.size(), for a look without the lock
};

}  // namespace zentavo::platform
