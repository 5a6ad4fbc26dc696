#include "zentavo/threads_memory/wait_list.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include "support/latch.h"

#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

using testing::Latch;

TEST(TWaitList, GivesNullWhileAnotherThreadHoldsIt) {
  TWaitList list;
  TList* const held = list.LockList(-1);
  ASSERT_NE(held, nullptr);
  EXPECT_EQ(list.LockList(0), held);
  const auto other = [&](std::int32_t timeout) {
    return testing::OnAnotherThread([&] {
      TList* const got = list.LockList(timeout);
      if (got != nullptr) list.UnLockList();
      return got;
    });
  };
  EXPECT_EQ(other(0), nullptr);
  list.UnLockList();
  EXPECT_EQ(other(1), nullptr);
  list.UnLockList();
  EXPECT_EQ(other(0x7FFFFFFF), held);
  EXPECT_THROW(list.UnLockList(), Exception);
}

TEST(TWaitList, IsDestroyedOnlyAfterItsHolderGaveItUp) {
  auto list = std::make_unique<TWaitList>();
  Latch held(1);
  Latch destroying(1);
  std::atomic<bool> given_up{false};
  std::future<void> holder = std::async(std::launch::async, [&, own = list.get()] {
    own->LockList(-1);
    held.Arrive();
    destroying.Wait();
    for (int i = 0; i < 50; ++i) std::this_thread::yield();
    given_up = true;
    own->UnLockList();
  });
  held.Wait();
  destroying.Arrive();
  list.reset();
  EXPECT_TRUE(given_up);
  holder.get();
}

}  // namespace
}  // namespace zentavo
