// 10,000 delayed items of 1 to 50 ms, beside Asio's steady_timer, and the allocations of a periodic
// timer's ticks.
//
// An item is late by the time from the moment it is due (the call plus its delay) to the moment it
// runs. TXThreadPool may run an item up to 9 ms early, which counts as not late; and by its rule
// the first items of each batch come up to 1 ms late. "rule" says how late its items would be if
// starting and running them took no time.
#include <sys/resource.h>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include "zentavo/threads_memory/thread_pool.h"
#include "zentavo/threads_memory/timer.h"

namespace {

std::atomic<long> allocations{0};

}  // namespace

// Not inlined: the compiler takes a pair of which one is for a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace {

using Clock = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

constexpr int kItems = 10'000;
constexpr int kLongestDelay = 50;  // milliseconds
constexpr unsigned kSeed = 1;
constexpr int kRuns = 5;
constexpr int kTicks = 500;

double Percentile(std::vector<double>& values, int percent) {
  const auto place = values.begin() + static_cast<std::ptrdiff_t>(values.size()) * percent / 100;
  std::nth_element(values.begin(), place, values.end());
  return *place;
}

// When the items were due and how late they were, in microseconds, each written by its own item.
class Lateness {
 public:
  Lateness() : dues_(kItems), values_(kItems) {}
  void Take(int item, Clock::time_point due) {
    const double late = Microseconds(Clock::now() - due).count();
    dues_[static_cast<std::size_t>(item)] = due;
    values_[static_cast<std::size_t>(item)] = std::max(late, 0.0);
    if (++done_ == kItems) done_.notify_all();
  }
  void Wait() const {
    for (int done = done_; done < kItems; done = done_) done_.wait(done);
  }
  std::vector<double>& Values() { return values_; }

  // The timer comes a millisecond behind the tick in which the first item is due, and takes the
  // items that are due in the ten ticks from then on along.
  std::vector<double> ValuesByRule() {
    constexpr Clock::duration kTick = std::chrono::milliseconds(1);
    std::sort(dues_.begin(), dues_.end());
    std::vector<double> values;
    Clock::time_point check;
    for (const Clock::time_point due : dues_) {
      if (due >= check + 10 * kTick) {
        check = std::chrono::floor<std::chrono::milliseconds>(due) + kTick;
      }
      values.push_back(std::max(Microseconds(check - due).count(), 0.0));
    }
    return values;
  }

 private:
  std::vector<Clock::time_point> dues_;
  std::vector<double> values_;
  std::atomic<int> done_{0};
};

template <typename Start>
void StartAll(Start start) {
  std::mt19937 random(kSeed);
  for (int item = 0; item < kItems; ++item) {
    const auto delay = 1 + static_cast<std::int32_t>(random() % kLongestDelay);
    start(item, delay, Clock::now() + std::chrono::milliseconds(delay));
  }
}

void RunOwn(Lateness& lateness) {
  class Item : public zentavo::TXWorkItem {
   public:
    Item(Lateness& result, int number, Clock::time_point due)
        : result_(result), number_(number), due_(due) {}
    void Execute() override { result_.Take(number_, due_); }

   private:
    Lateness& result_;
    int number_;
    Clock::time_point due_;
  };
  zentavo::TXThreadPool pool(2);
  StartAll([&](int item, std::int32_t delay, Clock::time_point due) {
    pool.RunDelay(std::make_unique<Item>(lateness, item, due), delay);
  });
  lateness.Wait();
  while (pool.CurThreads() != 0) std::this_thread::yield();
}

void RunAsio(Lateness& lateness) {
  boost::asio::io_context context;
  auto guard = boost::asio::make_work_guard(context);
  std::vector<std::jthread> threads;
  for (int i = 0; i < 2; ++i) threads.emplace_back([&] { context.run(); });
  StartAll([&](int item, std::int32_t, Clock::time_point due) {
    auto timer = std::make_unique<boost::asio::steady_timer>(context, due);
    boost::asio::steady_timer& waiting = *timer;
    waiting.async_wait(
        [&lateness, item, due, held = std::move(timer)](auto) { lateness.Take(item, due); });
  });
  lateness.Wait();
  guard.reset();
}

double ProcessorMicroseconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto of = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
  };
  return of(usage.ru_utime) + of(usage.ru_stime);
}

struct Figures {
  double median, late, processor, late_by_rule;
};

double Middle(std::vector<double>& values) {
  return Percentile(values, 50);
}

Figures Measure(void (*run)(Lateness&)) {
  std::vector<double> medians, lates, processors, rules;
  for (int i = 0; i < kRuns; ++i) {
    Lateness lateness;
    const double before = ProcessorMicroseconds();
    run(lateness);
    processors.push_back((ProcessorMicroseconds() - before) / kItems);
    medians.push_back(Percentile(lateness.Values(), 50));
    lates.push_back(Percentile(lateness.Values(), 99));
    std::vector<double> by_rule = lateness.ValuesByRule();
    rules.push_back(Percentile(by_rule, 99));
  }
  return {Middle(medians), Middle(lates), Middle(processors), Middle(rules)};
}

double AllocationsPerTick() {
  std::atomic<int> ticks{0};
  zentavo::TXTimer timer;
  timer.OnTimer = [&](zentavo::TXTimer&) {
    ++ticks;
    ticks.notify_all();
  };
  const auto wait_for = [&](int count) {
    for (int now = ticks; now < count; now = ticks) ticks.wait(now);
  };
  timer.StartTimer(1, 0);
  wait_for(10);
  const int first = ticks;
  const long before = allocations;
  wait_for(first + kTicks);
  return static_cast<double>(allocations - before) / kTicks;
}

void Print(const char* who, const Figures& figures) {
  std::printf("%-10s %12.0f %12.0f %20.2f\n", who, figures.median, figures.late, figures.processor);
}

}  // namespace

int main() {
  const Figures own = Measure(RunOwn);
  const Figures asio = Measure(RunAsio);
  std::printf("%-10s %12s %12s %20s\n", "us", "median late", "99% late", "processor an item");
  Print("zentavo", own);
  Print("asio", asio);
  std::printf("%-10s %12s %12.0f\n", "rule", "", own.late_by_rule);
  std::printf("\npeer's / this library's: 99%% late %.2f, processor an item %.2f\n",
              asio.late / own.late, asio.processor / own.processor);
  std::printf("allocations a tick of a periodic timer: %.3f\n", AllocationsPerTick());
}
