// Work in the background: a capped pool with delayed items, a timer, and memory that other
// processes see.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>
#include <utility>

#include "zentavo/threads_memory/memory_map.h"
#include "zentavo/threads_memory/thread_pool.h"
#include "zentavo/threads_memory/timer.h"

namespace {

// One invoice to post. Its worker destroys it.
class PostInvoice : public zentavo::TXWorkItem {
 public:
  PostInvoice(int amount, std::atomic<int>& posted, std::atomic<int>& total)
      : amount_(amount), posted_(posted), total_(total) {}
  void Execute() override {
    total_ += amount_;
    ++posted_;
  }

 private:
  int amount_;
  std::atomic<int>& posted_;
  std::atomic<int>& total_;
};

void WaitFor(const std::atomic<int>& number, int wanted) {
  while (number < wanted) std::this_thread::yield();
}

int PostInvoices() {
  constexpr int kInvoices = 100;
  std::atomic<int> posted{0};
  std::atomic<int> total{0};
  zentavo::TXThreadPool pool(2);  // at most two at once
  for (int amount = 1; amount <= kInvoices; ++amount) {
    auto item = std::make_unique<PostInvoice>(amount, posted, total);
    if (amount % 10 == 0) {
      pool.RunDelay(std::move(item), 20);  // milliseconds
    } else {
      pool.Run(std::move(item));
    }
  }
  WaitFor(posted, kInvoices);
  // The last worker looks for one more item; the pool must outlive that.
  while (pool.CurThreads() != 0) std::this_thread::yield();
  return total;
}

int CountTicks() {
  std::atomic<int> ticks{0};
  zentavo::TXTimer timer;
  timer.OnTimer = [&](zentavo::TXTimer&) { ++ticks; };
  timer.StartTimer(5, -1);  // after 5 ms, then every 5 ms
  WaitFor(ticks, 3);
  timer.StopTimer();  // no call runs when this returns
  return ticks;
}

// Counts the runs of this program that are under way, in memory that they share.
int CountRuns() {
  zentavo::TXMemoryMap map(u"Example.Runs", sizeof(std::int32_t), true);
  auto* runs = static_cast<std::int32_t*>(map.MapMemory(0, sizeof(std::int32_t)));
  if (!map.Lock(1000)) return 0;  // in time, and nobody died with it
  const int number = ++*runs;
  map.UnLock();
  return number;
}

}  // namespace

int main() {
  const int total = PostInvoices();
  const int ticks = CountTicks();
  const int runs = CountRuns();
  std::cout << "posted " << total << ", ticks " << ticks << ", runs " << runs << "\n";
  return total == 5050 && ticks >= 3 && runs >= 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}
