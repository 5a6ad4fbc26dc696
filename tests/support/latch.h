// Waiting for other threads. The standard library's own latches and waits on atomics lose wake-ups
// on Windows with g++ 12.
#pragma once

#include <atomic>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <thread>

namespace zentavo::testing {

// Counts up. Its waiters may destroy it while another thread is still leaving Count.
class Counter {
 public:
  void Count() {
    const std::shared_ptr<State> state = state_;
    const std::lock_guard lock(state->mutex);
    ++state->count;
    state->changed.notify_all();
  }
  void WaitFor(int count) {
    std::unique_lock lock(state_->mutex);
    state_->changed.wait(lock, [&] { return state_->count >= count; });
  }
  int Value() {
    const std::lock_guard lock(state_->mutex);
    return state_->count;
  }

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;
  };
  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

// Opens after so many arrivals and stays open.
class Latch {
 public:
  explicit Latch(int arrivals) : arrivals_(arrivals) {}
  void Arrive() { counter_.Count(); }
  void Wait() { counter_.WaitFor(arrivals_); }
  void ArriveAndWait() {
    Arrive();
    Wait();
  }

 private:
  Counter counter_;
  const int arrivals_;
};

// A call that is under way while something that must wait for it begins.
class RunningCall {
 public:
  // The call: stays until the other side begins, and then a little longer.
  void Run() {
    entered_.Arrive();
    ending_.Wait();
    for (int i = 0; i < 50; ++i) std::this_thread::yield();
    left_ = true;
  }
  // Whether the call had left when `end` came back.
  template <typename End>
  bool HasLeftAfter(End end) {
    entered_.Wait();
    ending_.Arrive();
    end();
    return left_;
  }

 private:
  Latch entered_{1};
  Latch ending_{1};
  std::atomic<bool> left_{false};
};

// What `call` gives on a thread of its own.
template <typename Call>
auto OnAnotherThread(Call call) {
  return std::async(std::launch::async, call).get();
}

}  // namespace zentavo::testing
