// Runs the registered benchmarks and prints, behind the usual table, how many times the peers' time
// is this library's: the best of several repetitions each, or their median where a benchmark asks
// for aggregates only.
//
// A benchmark is named CASE/WHO; WHO is "zentavo" for this library's own. WHO may begin with
// "zentavo" for variants of it, each of which is compared.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace bench {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  // Gets the repetitions of one benchmark together, or what sums them up.
  void ReportRuns(const std::vector<Run>& runs) override {
    const auto best = std::min_element(
        runs.begin(), runs.end(), [](const Run& a, const Run& b) { return Rank(a) < Rank(b); });
    if (best == runs.end() || best->error_occurred) return ConsoleReporter::ReportRuns(runs);
    if (Take(best->run_name.function_name, TimeOf(*best))) ConsoleReporter::ReportRuns({*best});
  }

  void PrintRatios() const {
    std::printf("\n%-44s %s\n", "case", "peer's time / this library's");
    for (const auto& [name, times] : times_) {
      for (const auto& [who, own] : times) {
        if (who.rfind("zentavo", 0) == 0) PrintLine(name, who, own);
      }
    }
  }

 private:
  // Processor time, which other programs on the machine disturb less, unless a benchmark asks for
  // the wall clock.
  static double TimeOf(const Run& run) {
    const bool wall_clock = !run.run_name.time_type.empty();
    return wall_clock ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
  }
  // The shortest repetition comes first, and of what sums them up the median.
  static double Rank(const Run& run) {
    if (run.error_occurred) return 0;
    if (run.run_type != Run::RT_Aggregate) return TimeOf(run);
    return run.aggregate_name == "median" ? 0 : 1;
  }

  // Returns whether it is the first time of `function`.
  bool Take(const std::string& function, double time) {
    const std::size_t slash = function.rfind('/');
    if (slash == std::string::npos) return true;
    return times_[function.substr(0, slash)].try_emplace(function.substr(slash + 1), time).second;
  }

  void PrintLine(const std::string& name, const std::string& who, double own) const {
    std::printf("%-44s", (who == "zentavo" ? name : name + " (" + who + ")").c_str());
    for (const auto& [peer, time] : times_.at(name)) {
      if (peer.rfind("zentavo", 0) != 0) std::printf("  %s %.2f", peer.c_str(), time / own);
    }
    std::printf("\n");
  }

  std::map<std::string, std::map<std::string, double>> times_;
};

// Repeats every benchmark, in turns with the others, so that what disturbs the machine for a while
// disturbs all of them alike. Options given on the command line come later and win.
inline int RunWithRatios(int argc, char** argv) {
  std::vector<std::string> repeated = {"--benchmark_repetitions=7", "--benchmark_min_time=0.1",
                                       "--benchmark_enable_random_interleaving=true"};
  std::vector<char*> arguments(argv, argv + argc);
  for (std::string& option : repeated) arguments.insert(arguments.begin() + 1, option.data());
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  return 0;
}

}  // namespace bench
