#include "zentavo/framework/variant_convert.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/framework/variant_dump.h"
#include "tests/support/thread_settings.h"

namespace zentavo {
namespace {

constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax64 = std::numeric_limits<std::int64_t>::max();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class VariantConvert : public ::testing::Test {
 protected:
  const testing::ThreadSettings invariant_{TFormatSettings()};
};

TEST_F(VariantConvert, ToText) {
  struct Row {
    Variant value;
    const char16_t* text;
  };
  for (const Row& row : {Row{Variant::Null(), u""}, Row{true, u"True"}, Row{2.5f, u"2.5"},
                         Row{Variant::CurrencyUnits(-5), u"-0.0005"},
                         Row{Variant::CurrencyUnits(kMin64), u"-922337203685477.5808"},
                         Row{Variant::Date(45000), u"2023-03-15"},
                         Row{Variant::ByteArray{std::byte{'o'}, std::byte{'k'}}, u"ok"}})
    EXPECT_EQ(VarToStr(row.value), row.text);
}

TEST_F(VariantConvert, ToTextUsesTheDecimalSeparatorOfTheSettings) {
  SetThreadFormatSettings(testing::CommaSettings());
  EXPECT_EQ(VarToStr(1.5), u"1,5");
  EXPECT_EQ(VarToStr(Variant::CurrencyUnits(15000)), u"1,5");
  EXPECT_EQ(VarToDouble(u"1.5"), 1.5);
}

TEST_F(VariantConvert, ToNumber) {
  const std::string cast = "EVariantTypeCastError: Could not convert variant of type (";
  const std::string range = "ERangeError: Range check error";
  struct Row {
    Variant value;
    std::string real, int32, int64;
  };
  const Row rows[] = {
      {Variant(), "0", "0", "0"},
      {true, "-1", "-1", "-1"},
      {2.5, "2.5", "2", "2"},
      {u" 12.75 ", "12.75", "13", "13"},
      {Variant::CurrencyUnits(-35000), "-3.5", "-4", "-4"},
      {Variant::CurrencyUnits(5001), "0.5001", "1", "1"},
      {2147483647.5, "2147483647.5", range, "2147483648"},
      {u"9223372036854775807", "9.22337203685478E18", range, "9223372036854775807"},
      {0x1p63, "9.22337203685478E18", range, range},
      {kNaN, "NAN", range, range},
      {Variant::Null(), cast + "Null) into type (Double)", cast + "Null) into type (Integer)",
       cast + "Null) into type (Int64)"},
      {u"x", cast + "String) into type (Double)", cast + "String) into type (Integer)",
       cast + "String) into type (Int64)"},
      {Variant::Array(), cast + "Array) into type (Double)", cast + "Array) into type (Integer)",
       cast + "Array) into type (Int64)"},
  };
  const auto text_of = [](const auto& convert) {
    return DumpOf([&] { return Variant(VarToStr(convert())); });
  };
  const auto expected = [](const std::string& result) {
    return result.starts_with("E") ? result : "String " + result;
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(Dump(row.value));
    EXPECT_EQ(text_of([&] { return VarToDouble(row.value); }), expected(row.real));
    EXPECT_EQ(text_of([&] { return VarToInt32(row.value); }), expected(row.int32));
    EXPECT_EQ(text_of([&] { return VarToInt64(row.value); }), expected(row.int64));
  }
}

TEST_F(VariantConvert, ToBoolean) {
  for (const Variant& yes : Variant::Array{true, 2, kMax64, -0.5, u"tRUE", u"1", u"0.1"}) {
    EXPECT_TRUE(VarToBoolean(yes)) << Dump(yes);
  }
  for (const Variant& no : Variant::Array{false, Variant(), 0, -0.0, u"false", u"0.0"}) {
    EXPECT_FALSE(VarToBoolean(no)) << Dump(no);
  }
  EXPECT_EQ(DumpOf([] { return VarToBoolean(u"yes"); }),
            "EVariantTypeCastError: Could not convert variant of type (String) into type "
            "(Boolean)");
}

TEST_F(VariantConvert, ToDateReadsDatesBeforeNumbers) {
  EXPECT_EQ(VarToDateTime(u"2023-03-15"), 45000);
  EXPECT_EQ(VarToDateTime(u"45000.5"), 45000.5);
  EXPECT_EQ(VarToDateTime(7), 7);
  EXPECT_THROW(VarToDateTime(u"someday"), EVariantTypeCastError);
}

}  // namespace
}  // namespace zentavo
