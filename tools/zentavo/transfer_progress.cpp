#include "tools/zentavo/transfer_progress.h"

#include <algorithm>
#include <cstdio>

#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"
#include "zentavo/platform/console.h"

namespace zentavo::tool {

namespace {

constexpr auto kQuietTime = std::chrono::seconds(1);
constexpr auto kTimeBetweenBars = std::chrono::milliseconds(200);

std::string Grouped(std::int64_t number) {
  return ToUtf8(FloatToFixed(static_cast<double>(number), 0, Grouping::kThousands, u'.', u','));
}

}  // namespace

std::string TransferBar(std::int64_t done, std::int64_t total) {
  constexpr std::int64_t kWidth = 40;
  if (total <= 0 || done > total) return Grouped(done) + " bytes";
  const double part = static_cast<double>(done) / static_cast<double>(total);
  const auto filled = static_cast<std::size_t>(part * kWidth);
  return "[" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " +
         std::to_string(static_cast<int>(part * 100)) + "% of " + Grouped(total) + " bytes";
}

TransferProgress::TransferProgress(std::int64_t total)
    : total_(total),
      terminal_(platform::StandardErrorIsTerminal()),
      next_(Clock::now() + kQuietTime) {}

TransferProgress::~TransferProgress() {
  if (shown_ != 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(shown_), "");
}

void TransferProgress::Advance(std::int64_t bytes) {
  done_ += bytes;
  if (!terminal_ || Clock::now() < next_) return;
  next_ = Clock::now() + kTimeBetweenBars;
  const std::string bar = TransferBar(done_, total_);
  shown_ = std::max(shown_, bar.size());
  std::fprintf(stderr, "\r%-*s", static_cast<int>(shown_), bar.c_str());
  std::fflush(stderr);
}

}  // namespace zentavo::tool
