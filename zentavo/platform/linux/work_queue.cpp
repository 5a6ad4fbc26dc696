#include "zentavo/platform/linux/work_queue.h"

#include <algorithm>
#include <new>
#include <thread>

#include "zentavo/platform/brief_lock.h"
#include "zentavo/platform/linux/own_threads.h"

namespace zentavo::platform {

namespace {

using std::chrono::steady_clock;

// About as long as waking a thread takes, so that looking costs at most as much again.
constexpr std::chrono::microseconds kSearchTime{20};
constexpr int kLooksPerClockReading = 32;
// Checks without waiting work before the supervisor sleeps: calling it for every work that has to
// wait for a moment would cost more than the checks.
constexpr int kQuietChecks = 50;

int Processors() {
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

WorkQueueLimits Filled(WorkQueueLimits limits) {
  if (limits.prompt_threads == 0) limits.prompt_threads = Processors();
  limits.prompt_threads = std::min(limits.prompt_threads, limits.max_threads);
  return limits;
}

// Returns the lock held. Tries for about a microsecond before it lets the thread sleep, since a
// sleep and a wake-up cost more than the holder's whole work.
std::unique_lock<std::mutex> LockSpinning(std::mutex& mutex) {
  constexpr int kTries = 40;
  std::unique_lock lock(mutex, std::try_to_lock);
  for (int tries = 1; tries < kTries && !lock.owns_lock(); ++tries) {
    PauseProcessor();
    if (lock.try_lock()) return lock;
  }
  if (!lock.owns_lock()) lock.lock();
  return lock;
}

}  // namespace

WorkQueue::WorkQueue(const WorkQueueLimits& limits) : limits_(Filled(limits)) {}

WorkQueue::~WorkQueue() {
  {
    const Lock lock(mutex_);
    closing_ = true;
    work_.notify_all();
    supervisor_.notify_all();
  }
  WaitUntilEmpty();
}

bool WorkQueue::Submit(WorkFunction function, void* context) {
  Help help = Help::kNone;
  {
    const Lock lock = LockSpinning(mutex_);
    if (!Keep({function, context})) return false;
    help = FindHelp();
    if (workers_ == 0) {
      jobs_.pop_back();
      waiting_.store(jobs_.size(), std::memory_order_relaxed);
      return false;
    }
  }
  Give(help);
  return true;
}

int WorkQueue::Threads() {
  const Lock lock(mutex_);
  return workers_;
}

void WorkQueue::WaitUntilEmpty() {
  Lock lock(mutex_);
  left_.wait(lock, [this] { return threads_ == 0; });
}

bool WorkQueue::Keep(const Job& job) {
  try {
    jobs_.push_back(job);
  } catch (const std::bad_alloc&) {
    return false;
  }
  waiting_.store(jobs_.size(), std::memory_order_relaxed);
  return true;
}

// A worker that is coming takes one job and then finds help for the next, so one at a time is
// enough.
WorkQueue::Help WorkQueue::FindHelp() {
  if (jobs_.empty() || coming_ > 0) return Help::kNone;
  if (sleeping_ > 0) {
    --sleeping_;
    ++calls_;
    ++coming_;
    return Help::kWakeWorker;
  }
  if (workers_ < limits_.prompt_threads && StartWorker()) return Help::kNone;
  return workers_ < limits_.max_threads ? CallSupervisor() : Help::kNone;
}

bool WorkQueue::StartWorker() {
  if (!StartOwnThread(WorkerThread, this)) return false;
  ++workers_;
  ++coming_;
  ++threads_;
  return true;
}

WorkQueue::Help WorkQueue::CallSupervisor() {
  if (!supervised_ && StartOwnThread(SupervisorThread, this)) {
    supervised_ = true;
    ++threads_;
  }
  if (!supervisor_sleeps_) return Help::kNone;
  supervisor_sleeps_ = false;
  return Help::kWakeSupervisor;
}

void WorkQueue::Give(Help help) {
  if (help == Help::kWakeWorker) work_.notify_one();
  if (help == Help::kWakeSupervisor) supervisor_.notify_one();
}

void WorkQueue::WorkerThread(void* queue) {
  static_cast<WorkQueue*>(queue)->RunWorker();
}

void WorkQueue::RunWorker() {
  Lock lock = LockSpinning(mutex_);
  do {
    --coming_;
    while (!jobs_.empty()) RunOne(lock);
  } while (AwaitWork(lock));
  --workers_;
  LeaveThread();
}

void WorkQueue::RunOne(Lock& lock) {
  const Job job = jobs_.front();
  jobs_.pop_front();
  ++taken_;
  waiting_.store(jobs_.size(), std::memory_order_relaxed);
  const Help help = FindHelp();
  lock.unlock();
  Give(help);
  job.function(job.context);
  lock = LockSpinning(mutex_);
}

bool WorkQueue::AwaitWork(Lock& lock) {
  if (coming_ > 0 || closing_) return Sleep(lock);
  ++coming_;
  Search(lock);
  if (!jobs_.empty()) return true;
  --coming_;
  return Sleep(lock);
}

void WorkQueue::Search(Lock& lock) {
  lock.unlock();
  const auto end = steady_clock::now() + kSearchTime;
  bool found = false;
  do {
    for (int looks = 0; looks < kLooksPerClockReading && !found; ++looks) {
      PauseProcessor();
      found = waiting_.load(std::memory_order_relaxed) > 0;
    }
  } while (!found && steady_clock::now() < end);
  lock = LockSpinning(mutex_);
}

bool WorkQueue::Sleep(Lock& lock) {
  ++sleeping_;
  work_.wait_for(lock, limits_.idle, [this] { return calls_ > 0 || closing_; });
  if (calls_ > 0) {  // the caller has counted this worker as coming
    --calls_;
    return true;
  }
  --sleeping_;
  return false;
}

void WorkQueue::SupervisorThread(void* queue) {
  static_cast<WorkQueue*>(queue)->RunSupervisor();
}

void WorkQueue::RunSupervisor() {
  Lock lock = LockSpinning(mutex_);
  int quiet_checks = 0;
  bool stays = true;
  while (stays) {
    CheckForStall(lock);
    quiet_checks = jobs_.empty() ? quiet_checks + 1 : 0;
    if (quiet_checks < kQuietChecks && !(closing_ && jobs_.empty())) continue;
    stays = SleepSupervisor(lock);
    quiet_checks = 0;
  }
  supervised_ = false;
  LeaveThread();
}

void WorkQueue::CheckForStall(Lock& lock) {
  const std::uint64_t taken = taken_;
  supervisor_.wait_for(lock, limits_.stall);
  const bool stalled = !jobs_.empty() && taken == taken_ && coming_ == 0;
  if (stalled && workers_ < limits_.max_threads) StartWorker();
}

// Returns whether it was called.
bool WorkQueue::SleepSupervisor(Lock& lock) {
  supervisor_sleeps_ = true;
  supervisor_.wait_for(lock, limits_.idle, [this] { return !supervisor_sleeps_ || closing_; });
  const bool called = !supervisor_sleeps_;
  supervisor_sleeps_ = false;
  return called;
}

// Notified under the lock: whoever waits may destroy the queue as soon as the lock is given up.
void WorkQueue::LeaveThread() {
  --threads_;
  left_.notify_all();
}

}  // namespace zentavo::platform
