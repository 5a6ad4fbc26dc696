#include "zentavo/optimise/genetic_algorithm.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "optimise/count_ones.h"

namespace {
constinit std::atomic<std::int64_t> allocations{0};
}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* const block = std::malloc(size)) return block;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
  std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}

namespace zentavo {
namespace {

using zentavo::testing::CountOnes;

TEST(TGeneticAlgorithm, AllocatesNothingAfterTheFirstGeneration) {
  const std::vector<String> excluded = {String(256, u'0'), String(12, u'1')};
  std::int64_t first = 0;
  std::int64_t last = 0;
  for (const std::int32_t gene_size : {1, 16}) {
    TGeneticAlgorithm search;
    search.SetOnProgress([&](const TGeneticProgress& now) {
      (now.Generation <= 1 ? first : last) = allocations;
      return now.Generation < 200;
    });
    const std::int64_t before = allocations;
    const auto fitness = std::make_shared<CountOnes>(256 / gene_size, gene_size);
    fitness->offset = 1;
    fitness->max_gene = 1000;
    search.Execute(fitness, Now() + 1, 0, u"1X0X", excluded);
    ASSERT_EQ(search.Generations(), 200);
    if (first - before < 80) GTEST_SKIP() << "the library's allocations are not seen here";
    EXPECT_EQ(last, first);
  }
}

}  // namespace
}  // namespace zentavo
