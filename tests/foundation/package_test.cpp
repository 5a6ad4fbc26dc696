#include "zentavo/foundation/package.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "zentavo/foundation/errors.h"
#include "zentavo/foundation/helper_unit.h"

namespace zentavo {
namespace {

std::string log;

TEST(PackageFrame, RunsEachUnitOnceInOrderAndBack) {
  log.clear();
  PackageUnit units[] = {
      {"a", [] { log += "a"; }, [] { log += "A"; }},
      {"b", nullptr, nullptr},
      {"c", [] { log += "c"; }, [] { log += "C"; }},
  };
  InitializeUnits(units);
  InitializeUnits(units);  // a second load is a no-op
  EXPECT_EQ(log, "ac");
  FinalizeUnits(units);
  EXPECT_EQ(log, "ac");
  FinalizeUnits(units);
  FinalizeUnits(units);
  InitializeUnits(units);
  EXPECT_EQ(log, "acCAac");
}

TEST(PackageFrame, FailedUnitIsNotCounted) {
  log.clear();
  PackageUnit units[] = {
      {"a", [] { log += "a"; }, [] { log += "A"; }},
      {"b", [] { throw std::runtime_error("b"); }, [] { log += "B"; }},
  };
  EXPECT_THROW(InitializeUnits(units), std::runtime_error);
  FinalizeUnits(units);
  EXPECT_EQ(log, "aA");
}

TEST(PackageFrame, LibraryIsLoadedInDependencyOrder) {
  const auto units = PackageUnits();
  const auto place = [&units](std::string_view name) {
    return std::ranges::find(units, name, &PackageUnit::name) - units.begin();
  };
  const std::vector<std::string_view> order = {"Fileaccess", "Helper", "Genlib", "XErrors",
                                               "XParser"};
  EXPECT_TRUE(std::ranges::is_sorted(order, {}, place));
  EXPECT_LT(place("XParser"), std::ssize(units));
  for (const PackageUnit& unit : units) EXPECT_EQ(unit.counter, -1) << unit.name;
  EXPECT_GT(XAllocationGranularity, 0u);
}

TEST(PackageFrame, UnloadingClearsTheErrorTexts) {
  FLastErrorString = u"a text that is longer than short texts are";
  FLastMessageString = u"message";
  UnloadPackage();
  EXPECT_EQ(FLastErrorString, u"");
  EXPECT_EQ(FLastMessageString, u"");
  LoadPackage();
}

}  // namespace
}  // namespace zentavo
