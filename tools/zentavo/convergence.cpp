#include "tools/zentavo/convergence.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

// The picture, in its own units.
constexpr double kWidth = 800;
constexpr double kHeight = 360;
constexpr double kLeft = 90;
constexpr double kTop = 20;
constexpr double kRight = kWidth - 20;
constexpr double kBottom = kHeight - 40;
constexpr int kTicks = 5;

constexpr std::string_view kHead =
    "<!DOCTYPE html>\n"
    "<html lang=\"en\">\n"
    "<head>\n"
    "<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width\">\n"
    "<title>Assignment</title>\n"
    "<style>\n"
    "body { font: 16px/1.5 sans-serif; max-width: 52em; margin: 2em auto; padding: 0 1em;\n"
    "       color: #222; background: #fff }\n"
    "svg { width: 100%; height: auto }\n"
    "svg text { font-size: 13px; fill: #555 }\n"
    "table { border-collapse: collapse }\n"
    "th, td { border-bottom: 1px solid #ddd; padding: .2em 1em .2em 0; text-align: left }\n"
    ".number { text-align: right }\n"
    ".best { stroke: #0b62a8 } .average { stroke: #c77700 }\n"
    "text.best { fill: #0b62a8; stroke: none } text.average { fill: #c77700; stroke: none }\n"
    "</style>\n"
    "</head>\n"
    "<body>\n"
    "<h1>Assignment</h1>\n";

std::string Number(double value) {
  std::string text;
  AppendFloat(text, value);
  return text;
}

// To a tenth of a unit, which no eye tells apart.
std::string Place(double value) {
  return Number(std::round(value * 10) / 10);
}

std::string Escaped(std::string_view text) {
  std::string result;
  for (const char byte : text) {
    switch (byte) {
      case '&': result += "&amp;"; break;
      case '<': result += "&lt;"; break;
      case '>': result += "&gt;"; break;
      case '"': result += "&quot;"; break;
      default: result += byte;
    }
  }
  return result;
}

// Where generations and costs lie in the picture.
class Scale {
 public:
  explicit Scale(const std::vector<ConvergencePoint>& points)
      : last_(std::max(points.back().generation, 1)),
        low_(points.back().best),
        high_(points.front().average) {
    for (const ConvergencePoint& point : points) high_ = std::max(high_, point.average);
    if (!(high_ > low_)) high_ = low_ + 1;
  }

  std::string Across(double generation) const {
    return Place(kLeft + (kRight - kLeft) * generation / last_);
  }
  std::string Down(double cost) const {
    return Place(kBottom - (kBottom - kTop) * (cost - low_) / (high_ - low_));
  }
  double Generation(int tick) const { return std::round(last_ * tick / kTicks); }
  // With as many digits as tell the ticks apart.
  double Cost(int tick) const {
    const double digit = std::pow(10, std::floor(std::log10((high_ - low_) / kTicks)) - 1);
    return std::round((low_ + (high_ - low_) * tick / kTicks) / digit) * digit;
  }

 private:
  double last_, low_, high_;
};

std::string Text(const std::string& across, const std::string& down, const char* attributes,
                 const std::string& text) {
  return "<text x=\"" + across + "\" y=\"" + down + "\" " + attributes + ">" + text + "</text>\n";
}

std::string Axes(const Scale& scale) {
  std::string svg;
  for (int tick = 0; tick <= kTicks; ++tick) {
    const std::string down = scale.Down(scale.Cost(tick));
    svg +=
        "<path d=\"M" + Place(kLeft) + " " + down + "H" + Place(kRight) + "\" stroke=\"#ddd\"/>\n";
    svg += Text(Place(kLeft - 8), down, R"(text-anchor="end" dominant-baseline="middle")",
                Number(scale.Cost(tick)));
    const double generation = scale.Generation(tick);
    svg += Text(scale.Across(generation), Place(kBottom + 20), R"(text-anchor="middle")",
                Number(generation));
  }
  return svg;
}

std::string Line(const Scale& scale, const std::vector<ConvergencePoint>& points,
                 double ConvergencePoint::*cost, const std::string& name) {
  std::string svg = "<polyline class=\"" + name + "\" fill=\"none\" stroke-width=\"2\" points=\"";
  for (const ConvergencePoint& point : points) {
    svg += scale.Across(point.generation) + "," + scale.Down(point.*cost) + " ";
  }
  svg.back() = '"';
  return svg + "/>\n";
}

std::string Picture(const std::vector<ConvergencePoint>& points) {
  const Scale scale(points);
  std::string svg = "<svg viewBox=\"0 0 " + Place(kWidth) + " " + Place(kHeight) +
                    "\" role=\"img\" aria-label=\"Cost by generation\">\n";
  svg += Axes(scale);
  svg += Line(scale, points, &ConvergencePoint::average, "average");
  svg += Line(scale, points, &ConvergencePoint::best, "best");
  svg += Text(Place(kRight - 8), Place(kTop + 14), R"(class="average" text-anchor="end")",
              "average cost");
  svg +=
      Text(Place(kRight - 8), Place(kTop + 32), R"(class="best" text-anchor="end")", "lowest cost");
  svg +=
      Text(Place((kLeft + kRight) / 2), Place(kHeight - 4), "text-anchor=\"middle\"", "generation");
  return svg + "</svg>\n";
}

std::string AssignmentTable(const CostTable& table, const Assignment& assignment) {
  std::string html =
      "<table>\n<tr><th>Row</th><th>Column</th><th class=\"number\">Cost</th></tr>\n";
  for (std::size_t row = 0; row < assignment.size(); ++row) {
    html += "<tr><td>" + Escaped(table.row_names[row]) + "</td><td>" +
            Escaped(table.column_names[assignment[row]]) + "</td><td class=\"number\">" +
            Number(table.costs[row][assignment[row]]) + "</td></tr>\n";
  }
  return html + "</table>\n";
}

}  // namespace

void Convergence::Add(const ConvergencePoint& point) {
  last_ = point;
  if (point.generation % step_ != 0) return;
  if (points_.size() == kMostPoints) {
    step_ *= 2;
    std::erase_if(points_,
                  [&](const ConvergencePoint& kept) { return kept.generation % step_ != 0; });
    if (point.generation % step_ != 0) return;
  }
  points_.push_back(point);
}

std::vector<ConvergencePoint> Convergence::Points() const {
  std::vector<ConvergencePoint> points = points_;
  if (points.empty() || points.back().generation != last_.generation) points.push_back(last_);
  return points;
}

std::string ConvergencePage(const CostTable& table, const Assignment& assignment,
                            const ReportedRun& run, const std::vector<ConvergencePoint>& points) {
  std::string page(kHead);
  page += "<p>Total cost <b>" + Number(run.cost) + "</b> after " + std::to_string(run.generations) +
          " generations.</p>\n";
  page += Picture(points);
  page += AssignmentTable(table, assignment);
  return page + "</body>\n</html>\n";
}

}  // namespace zentavo::tool
