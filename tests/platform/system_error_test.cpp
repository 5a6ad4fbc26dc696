#include "zentavo/platform/system_error.h"

#include <gtest/gtest.h>

#include "zentavo/platform/directories.h"
#include "zentavo/platform/memory_info.h"

namespace zentavo::platform {
namespace {

TEST(SystemErrorText, IsOneLineForKnownAndUnknownCodes) {
  const SystemError error = MakeDirectory(u"/no/such/parent/folder");
  ASSERT_NE(error, 0U);
  const std::u16string text = SystemErrorText(error);
  EXPECT_GT(text.size(), 3U);
  EXPECT_EQ(text.find_first_of(u"\r\n"), text.npos);
  EXPECT_EQ(SystemErrorText(1'000'000'000), u"Unknown error 1000000000");
}

TEST(MemoryInfo, GranularityIsAMultipleOfThePage) {
  EXPECT_GE(PageSize(), 4096U);
  EXPECT_EQ(PageSize() & (PageSize() - 1), 0U);
  EXPECT_EQ(AllocationGranularity() % PageSize(), 0U);
}

}  // namespace
}  // namespace zentavo::platform
