// Runs the registered benchmarks and prints, behind the usual table, how many times the peers' time
// is this library's.
//
// A benchmark is named CASE/WHO; WHO is "zentavo" for this library's own. WHO may begin with
// "zentavo" for variants of it, each of which is compared.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace bench {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      // With repetitions only their median counts.
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
      // Processor time, which other programs on the machine disturb less, unless a benchmark asks
      // for the wall clock.
      const bool wall_clock = !run.run_name.time_type.empty();
      Take(run.run_name.function_name,
           wall_clock ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime());
    }
  }

  void PrintRatios() const {
    std::printf("\n%-44s %s\n", "case", "peer's time / this library's");
    for (const std::string& name : cases_) {
      for (const auto& [who, own] : times_.at(name)) {
        if (who.rfind("zentavo", 0) == 0) PrintLine(name, who, own);
      }
    }
  }

 private:
  void Take(const std::string& function, double time) {
    const std::size_t slash = function.rfind('/');
    if (slash == std::string::npos) return;
    const std::string name = function.substr(0, slash);
    if (times_.find(name) == times_.end()) cases_.push_back(name);
    times_[name][function.substr(slash + 1)] = time;
  }

  void PrintLine(const std::string& name, const std::string& who, double own) const {
    std::printf("%-44s", (who == "zentavo" ? name : name + " (" + who + ")").c_str());
    for (const auto& [peer, time] : times_.at(name)) {
      if (peer.rfind("zentavo", 0) != 0) std::printf("  %s %.2f", peer.c_str(), time / own);
    }
    std::printf("\n");
  }

  std::vector<std::string> cases_;
  std::map<std::string, std::map<std::string, double>> times_;
};

inline int RunWithRatios(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  return 0;
}

}  // namespace bench
