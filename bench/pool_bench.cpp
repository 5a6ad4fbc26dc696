// A million empty items through a capped pool, beside a thread pool of Asio and of Qt with as many
// threads, and a task group of TBB with as many participants. Wall time until the last item has
// run: the median of several runs, since which threads the system puts on one processor makes any
// of them twice as slow at times.
#define QT_NO_KEYWORDS  // "emit" is a name of the peer's
#include <QRunnable>
#include <QThreadPool>

#include <oneapi/tbb/task_arena.h>
#include <oneapi/tbb/task_group.h>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>

#include <atomic>
#include <memory>
#include <thread>

#include "ratios.h"
#include "zentavo/threads_memory/thread_pool.h"

namespace {

constexpr int kItems = 1'000'000;

// The last item of a run wakes whoever waits.
class Countdown {
 public:
  void Restart() { left_ = kItems; }
  void Count() {
    if (left_.fetch_sub(1, std::memory_order_acq_rel) == 1) left_.notify_all();
  }
  void Wait() const {
    for (int left = left_; left != 0; left = left_) left_.wait(left);
  }

 private:
  std::atomic<int> left_{0};
};

class EmptyItem : public zentavo::TXWorkItem {
 public:
  explicit EmptyItem(Countdown& countdown) : countdown_(countdown) {}
  void Execute() override { countdown_.Count(); }

 private:
  Countdown& countdown_;
};

class EmptyRunnable : public QRunnable {
 public:
  explicit EmptyRunnable(Countdown& countdown) : countdown_(countdown) {}
  void run() override { countdown_.Count(); }

 private:
  Countdown& countdown_;
};

void Own(benchmark::State& state, int threads) {
  zentavo::TXThreadPool pool(threads);
  Countdown countdown;
  for (auto _ : state) {
    countdown.Restart();
    for (int i = 0; i < kItems; ++i) pool.Run(std::make_unique<EmptyItem>(countdown));
    countdown.Wait();
  }
  // The last item's thread still looks for the next one.
  while (pool.CurThreads() != 0) std::this_thread::yield();
}

void Asio(benchmark::State& state, int threads) {
  boost::asio::thread_pool pool(static_cast<std::size_t>(threads));
  Countdown countdown;
  for (auto _ : state) {
    countdown.Restart();
    for (int i = 0; i < kItems; ++i) boost::asio::post(pool, [&] { countdown.Count(); });
    countdown.Wait();
  }
  pool.join();
}

void QtPool(benchmark::State& state, int threads) {
  QThreadPool pool;
  pool.setMaxThreadCount(threads);
  Countdown countdown;
  for (auto _ : state) {
    countdown.Restart();
    for (int i = 0; i < kItems; ++i) pool.start(new EmptyRunnable(countdown));
    countdown.Wait();
  }
  pool.waitForDone();
}

void Tbb(benchmark::State& state, int threads) {
  oneapi::tbb::task_arena arena(threads);
  Countdown countdown;
  for (auto _ : state) {
    countdown.Restart();
    arena.execute([&] {
      oneapi::tbb::task_group group;
      for (int i = 0; i < kItems; ++i) group.run([&] { countdown.Count(); });
      group.wait();
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  using Function = void (*)(benchmark::State&, int);
  const auto add = [](const std::string& name, Function function, int threads) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { function(state, threads); })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(9)
        ->ReportAggregatesOnly();
  };
  for (const int threads : {2, 8}) {
    const std::string name = "cap " + std::to_string(threads) + "/";
    add(name + "zentavo", Own, threads);
    add(name + "asio", Asio, threads);
    add(name + "QThreadPool", QtPool, threads);
    add(name + "tbb", Tbb, threads);
  }
  return bench::RunWithRatios(argc, argv);
}
