#include "tools/zentavo/progress.h"

#include <cstdio>
#include <utility>

#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"
#include "zentavo/platform/console.h"

namespace zentavo::tool {

namespace {

constexpr auto kQuietTime = std::chrono::seconds(1);
constexpr auto kTimeBetweenLines = std::chrono::milliseconds(200);

}  // namespace

Progress::Progress(std::string unit)
    : unit_(std::move(unit)),
      terminal_(platform::StandardErrorIsTerminal()),
      next_(Clock::now() + kQuietTime) {}

Progress::~Progress() {
  if (!shown_) return;
  constexpr int kLongestCount = 27;  // digits, separators and the blank
  std::fprintf(stderr, "\r%*s\r", kLongestCount + static_cast<int>(unit_.size()), "");
}

void Progress::Look() {
  const Clock::time_point now = Clock::now();
  if (now < next_) return;
  next_ = now + kTimeBetweenLines;
  shown_ = true;
  const String count =
      FloatToFixed(static_cast<double>(count_), 0, Grouping::kThousands, u'.', u',');
  std::fprintf(stderr, "\r%s %s", ToUtf8(count).c_str(), unit_.c_str());
  std::fflush(stderr);
}

}  // namespace zentavo::tool
