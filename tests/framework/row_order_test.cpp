#include "zentavo/framework/row_order.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zentavo {
namespace {

void ExpectSame(const RowOrder& order, const std::vector<RowSlot>& model) {
  ASSERT_EQ(order.Size(), static_cast<std::int64_t>(model.size()));
  for (std::size_t i = 0; i < model.size(); ++i) {
    ASSERT_EQ(order.At(static_cast<std::int64_t>(i)), model[i]) << i;
    ASSERT_EQ(order.PositionOf(model[i]), static_cast<std::int64_t>(i));
  }
}

TEST(RowOrder, EqualsAVector) {
  std::mt19937 random(23);  // NOLINT(bugprone-random-generator-seed): the same cases each time
  RowOrder order;
  std::vector<RowSlot> model;
  RowSlot next = 0;
  const auto position = [&](std::size_t limit) {
    return static_cast<std::ptrdiff_t>(random() % limit);
  };
  for (int phase = 0; phase < 6; ++phase) {
    const bool growing = phase % 2 == 0;
    for (int step = 0; step < 5000; ++step) {
      if (model.empty() || (random() % 8 < 6) == growing) {
        const auto at = random() % 3 == 0 ? std::ssize(model) : position(model.size() + 1);
        order.Insert(at, next);
        model.insert(model.begin() + at, next++);
      } else {
        const auto at = position(model.size());
        order.Erase(at);
        model.erase(model.begin() + at);
      }
      if (!model.empty()) {
        const auto at = position(model.size());
        ASSERT_EQ(order.At(at), model[static_cast<std::size_t>(at)]);
      }
    }
    ExpectSame(order, model);
  }
  order.Clear();
  EXPECT_EQ(order.Size(), 0);
}

}  // namespace
}  // namespace zentavo
