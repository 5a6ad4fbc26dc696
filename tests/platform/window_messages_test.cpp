#include "zentavo/platform/window_messages.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace zentavo::platform {
namespace {

constexpr std::uint32_t kMessage = 1082;

TEST(WindowMessages, ReachTheHandlerAndBringItsAnswer) {
  const char16_t text[] = u"μήνυμα";
  const WindowHandle window =
      OpenMessageWindow([&](std::uint32_t message, std::uintptr_t wparam, std::intptr_t lparam) {
        const auto* seen = reinterpret_cast<const char16_t*>(lparam);
        return message == kMessage && wparam == 1 && seen == text ? -42 : 0;
      });
  ASSERT_NE(window, 0U);
  EXPECT_EQ(SendWindowMessage(window, kMessage, 1, reinterpret_cast<std::intptr_t>(text)), -42);
  CloseMessageWindow(window);
  EXPECT_EQ(SendWindowMessage(window, kMessage, 1, 0), 0);
  EXPECT_EQ(SendWindowMessage(0, kMessage, 1, 0), 0);
}

TEST(WindowMessages, HandlerMaySendAndCloseItsOwnWindow) {
  const WindowHandle other = OpenMessageWindow([](auto, auto, auto) { return 5; });
  WindowHandle window = 0;
  window = OpenMessageWindow([&](std::uint32_t message, auto, auto) -> std::intptr_t {
    if (message != kMessage) return 0;
    CloseMessageWindow(window);
    return SendWindowMessage(other, kMessage, 0, 0) + 1;
  });
  EXPECT_EQ(SendWindowMessage(window, kMessage, 0, 0), 6);
  EXPECT_EQ(SendWindowMessage(window, kMessage, 0, 0), 0);
  CloseMessageWindow(other);
}

TEST(WindowMessages, ThreadsHaveWindowsOfTheirOwn) {
  std::vector<std::jthread> threads;
  for (std::intptr_t answer = 1; answer <= 4; ++answer) {
    threads.emplace_back([answer] {
      for (int i = 0; i < 200; ++i) {
        const WindowHandle window = OpenMessageWindow([=](auto, auto, auto) { return answer; });
        EXPECT_EQ(SendWindowMessage(window, kMessage, 0, 0), answer);
        CloseMessageWindow(window);
      }
    });
  }
}

}  // namespace
}  // namespace zentavo::platform
