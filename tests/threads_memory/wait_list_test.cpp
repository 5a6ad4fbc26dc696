#include "zentavo/threads_memory/wait_list.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "support/latch.h"

#include "zentavo/framework/exception.h"

namespace zentavo {
namespace {

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
  testing::RunningCall call;
  std::future<void> holder = std::async(std::launch::async, [&, own = list.get()] {
    own->LockList(-1);
    call.Run();
    own->UnLockList();
  });
  EXPECT_TRUE(call.HasLeftAfter([&] { list.reset(); }));
  holder.get();
}

}  // namespace
}  // namespace zentavo
