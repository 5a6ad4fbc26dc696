#include "zentavo/platform/tick_source.h"

#include <atomic>

#include "zentavo/platform/clock.h"

namespace zentavo::platform {

namespace {

constinit std::atomic<TickSource> tick_source{nullptr};

}  // namespace

void SetTickSource(TickSource source) {
  tick_source = source;
}

std::uint32_t TickCount() {
  const TickSource source = tick_source.load(std::memory_order_relaxed);
  return source != nullptr ? source() : SystemTickCount();
}

}  // namespace zentavo::platform
