#include "zentavo/framework/variant.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/framework/variant_dump.h"

namespace zentavo {
namespace {

using Array = Variant::Array;

// One of each kind, long and short texts included.
Array Samples() {
  return {Variant(),
          Variant::Null(),
          true,
          std::int32_t{-7},
          std::int64_t{1} << 40,
          1.5f,
          2.25,
          Variant::CurrencyUnits(-12345),
          Variant::Date(45000.5),
          u"",
          u"sevenUn",
          u"eight Un",
          Array{1, Array{u"a long text inside an array"}},
          Variant::ByteArray(20, std::byte{'x'})};
}

TEST(Variant, KeepsKindAndValueOfEachInteger) {
  EXPECT_EQ(Dump(Variant(std::int16_t{-3})), "Integer -3");
  EXPECT_EQ(Dump(Variant(3'000'000'000u)), "Int64 3000000000");
  EXPECT_EQ(Dump(Variant(-5LL)), "Int64 -5");
  EXPECT_EQ(Dump(Variant(std::uint8_t{255})), "Integer 255");
}

TEST(Variant, CopiesAreDeepAndMovesLeaveEmpty) {
  for (Variant& sample : Samples()) {
    const std::string before = Dump(sample);
    SCOPED_TRACE(before);
    Variant copy(sample);
    EXPECT_EQ(Dump(copy), before);
    Variant moved(std::move(copy));
    EXPECT_EQ(Dump(moved), before);
    EXPECT_TRUE(copy.IsEmpty());  // NOLINT(bugprone-use-after-move): that is what is tested
    for (Variant target : Samples()) {
      target = sample;
      EXPECT_EQ(Dump(target), before);
      Variant other = sample;
      target = std::move(other);
      EXPECT_EQ(Dump(target), before);
    }
  }
  Variant array = Array{Variant(Array{1})};
  Variant copy = array;
  copy.ArrayValue()[0].ArrayValue()[0] = 2;
  EXPECT_EQ(Dump(array.ArrayValue()[0].ArrayValue()[0]), "Integer 1");
}

TEST(Variant, SurvivesAssignmentToItselfAndFromItsOwnElement) {
  for (Variant& sample : Samples()) {
    const std::string before = Dump(sample);
    Variant& self = sample;
    sample = self;
    EXPECT_EQ(Dump(sample), before);
    sample = std::move(self);
    EXPECT_EQ(Dump(sample), before);
  }
  Variant outer = Array{Variant(Array{u"the innermost text"})};
  outer = outer.ArrayValue()[0];
  outer = std::move(outer.ArrayValue()[0]);
  EXPECT_EQ(Dump(outer), "String the innermost text");
}

TEST(Variant, AppendsTextAcrossTheShortLimit) {
  Variant value;
  String model;
  for (const char16_t* part : {u"", u"abc", u"defg", u"", u"h", u"a much longer piece", u"z"}) {
    value.AppendText(part);
    model += part;
    EXPECT_EQ(value.StringValue(), model);
  }
  for (const char16_t* text : {u"abc", u"abcd", u"long enough for the heap"}) {
    Variant twice = text;
    twice.AppendText(twice.StringValue());
    EXPECT_EQ(twice.StringValue(), String(text) + text);
  }
}

TEST(Variant, CopiesOfALongTextChangeAlone) {
  const Variant original = u"long enough for the heap";
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([copy = original]() mutable {
      for (int round = 0; round < 1000; ++round) {
        Variant changed = copy;
        copy = changed;
        changed.AppendText(u"!");
        ASSERT_EQ(changed.StringValue(), u"long enough for the heap!");
      }
    });
  }
  threads.clear();
  EXPECT_EQ(original.StringValue(), u"long enough for the heap");
}

Variant Nested(int depth) {
  Variant value = 1;
  for (int i = 0; i < depth; ++i) {
    Array around;
    around.push_back(i);
    around.push_back(std::move(value));
    value = std::move(around);
  }
  return value;
}

// Far deeper than recursion could go on the stack of any thread.
TEST(Variant, DeepNestingTakesNoStack) {
  constexpr int kDepth = 1'000'000;
  Variant deep = Nested(kDepth);
  Variant copy = deep;
  deep = 0;
  int depth = 0;
  for (const Variant* at = &copy; at->IsArray(); at = &at->ArrayValue()[1]) ++depth;
  EXPECT_EQ(depth, kDepth);
}

TEST(Variant, NestedArraysOfManyShapesAreFreedWhole) {
  Array wide;
  for (int i = 0; i < 10; ++i) {
    wide.push_back(Nested(i));
    wide.push_back(Array());
    wide.push_back(Samples());
  }
  Variant all = std::move(wide);
  const Variant copy = all;
  all = copy.ArrayValue()[27];
  EXPECT_EQ(Dump(all), Dump(Nested(9)));
}

}  // namespace
}  // namespace zentavo
