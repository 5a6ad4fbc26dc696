// The course of a search, and the page that shows it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/zentavo/assignment.h"

namespace zentavo::tool {

struct ConvergencePoint {
  std::int32_t generation;
  double best;
  double average;
};

// Keeps points evenly spread over a run of any length, the first and the last among them.
class Convergence {
 public:
  void Add(const ConvergencePoint& point);
  std::vector<ConvergencePoint> Points() const;

 private:
  static constexpr std::size_t kMostPoints = 1024;

  std::vector<ConvergencePoint> points_;
  ConvergencePoint last_{};
  std::int32_t step_ = 1;  // generations between points
};

struct ReportedRun {
  double cost;
  std::int32_t generations;
};

// A page of its own, in UTF-8: the convergence as inline SVG, and the assignment.
std::string ConvergencePage(const CostTable& table, const Assignment& assignment,
                            const ReportedRun& run, const std::vector<ConvergencePoint>& points);

}  // namespace zentavo::tool
