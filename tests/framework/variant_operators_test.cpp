#include "zentavo/framework/variant_operators.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "tests/framework/variant_dump.h"
#include "tests/support/thread_settings.h"

namespace zentavo {
namespace {

constexpr std::int32_t kMax32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMax64 = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin64 = std::numeric_limits<std::int64_t>::min();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const Variant kNull = Variant::Null();

Variant Money(std::int64_t units) {
  return Variant::CurrencyUnits(units);
}

class VariantOperators : public ::testing::Test {
 protected:
  const testing::ThreadSettings invariant_{TFormatSettings()};
};

Variant Calculate(const std::string& operation, const Variant& a, const Variant& b) {
  if (operation == "+") return a + b;
  if (operation == "-") return a - b;
  if (operation == "*") return a * b;
  if (operation == "/") return a / b;
  if (operation == "div") return VarDiv(a, b);
  if (operation == "mod") return VarMod(a, b);
  if (operation == "and") return VarAnd(a, b);
  if (operation == "negate") return -a;
  if (operation == "not") return VarNot(a);
  return VarOr(a, b);
}

struct Row {
  Variant a;
  const char* operation;
  Variant b;
  std::string result;
};

const std::string kNoNumber =
    "EVariantTypeCastError: Could not convert variant of type (String) into type (Double)";
const std::string kNoInteger =
    "EVariantTypeCastError: Could not convert variant of type (String) into type (Int64)";
const std::string kNoOperation = "EVariantError: Invalid variant operation";
const std::string kZero = "EZeroDivide: Floating point division by zero";
const std::string kZeroInteger = "EDivByZero: Division by zero";
const std::string kRange = "ERangeError: Range check error";

TEST_F(VariantOperators, Arithmetic) {
  const auto check = [](std::initializer_list<Row> rows) {
    for (const Row& row : rows) {
      EXPECT_EQ(DumpOf([&] { return Calculate(row.operation, row.a, row.b); }), row.result)
          << Dump(row.a) << ' ' << row.operation << ' ' << Dump(row.b);
    }
  };
  // Empty, booleans, integers and their widening
  check({Row{Variant(), "+", Variant(), "Integer 0"}, Row{Variant(), "-", 3, "Integer -3"},
         Row{true, "+", true, "Integer -2"}, Row{true, "*", 2.5, "Double -2.5"},
         Row{kMax32, "+", 1, "Int64 2147483648"},
         Row{kMin32, "*", kMin32, "Int64 4611686018427387904"},
         Row{kMax64, "+", 1, "Double 9.22337203685478E18"},
         Row{kMin64, "-", true, "Int64 -9223372036854775807"},
         Row{kMin64, "*", -1, "Double 9.22337203685478E18"}, Row{0.0, "/", -0.0, kZero},
         Row{1, "/", Variant(), kZero}});
  // singles, doubles
  check({Row{1.5f, "+", 1.5f, "Double 3"}});
  // text
  check({Row{u"1", "+", u"2", "String 12"}, Row{u"abc", "+", Variant(), "String abc"},
         Row{u"3", "+", 1, "Double 4"}, Row{1, "+", u"x", kNoNumber},
         Row{u"7", "-", u"2.5", "Double 4.5"}, Row{u"1,5", "*", 2, kNoNumber}});
  // currency
  check({Row{Money(15000), "+", Money(5000), "Currency 2"},
         Row{Money(kMax64), "+", Money(1), "Double 922337203685478"},
         Row{Money(12345), "*", Money(10001), "Currency 1.2346"},
         Row{Money(1), "*", Money(5000), "Currency 0.0001"},
         Row{Money(-1), "*", Money(5000), "Currency -0.0001"},
         Row{Money(1), "*", Money(4999), "Currency 0"},
         Row{Money(3000000000), "*", Money(3000000000), "Currency 90000000000"},
         Row{Money(kMax64), "*", Money(20000), "Double 1.84467440737096E15"},
         Row{Money(15000), "/", Money(5000), "Double 3"}});
  // dates
  check({Row{Variant::Date(10.5), "+", 2, "Date 12.5"},
         Row{Variant::Date(10.5), "-", u"0.5", "Date 10"},
         Row{Variant::Date(10.5), "-", Variant::Date(10), "Double 0.5"},
         Row{Variant::Date(10), "+", Variant::Date(0.25), "Date 10.25"},
         Row{20, "-", Variant::Date(10), "Double 10"},
         Row{Variant::Date(10), "*", 2, "Double 20"}});
  // Null and arrays
  check({Row{kNull, "+", u"x", "Null"}, Row{kNull, "/", 0, "Null"},
         Row{Variant::Array(), "+", 1, kNoOperation},
         Row{u"x", "+", Variant::ByteArray(), kNoOperation}});
  // one operand
  check({Row{Variant(), "negate", {}, "Integer 0"}, Row{kNull, "negate", {}, "Null"},
         Row{kMin32, "negate", {}, "Int64 2147483648"},
         Row{Variant::Date(2), "negate", {}, "Double -2"},
         Row{kMin64, "negate", {}, "Double 9.22337203685478E18"},
         Row{u"1.5", "negate", {}, "Double -1.5"}, Row{u"one", "negate", {}, kNoNumber},
         Row{true, "not", {}, "Boolean False"}, Row{kNull, "not", {}, "Null"},
         Row{Variant(), "not", {}, "Integer -1"},
         Row{kMin64, "not", {}, "Int64 9223372036854775807"},
         Row{u"1.5", "not", {}, "Integer -3"}});
  // div and mod
  check({Row{-7, "div", 2, "Integer -3"}, Row{-7, "mod", 2, "Integer -1"},
         Row{7, "mod", -2, "Integer 1"}, Row{2.5, "div", 1, "Integer 2"},
         Row{u"9007199254740993", "div", 1, "Int64 9007199254740993"},
         Row{kMin64, "div", -1, "Double 9.22337203685478E18"}, Row{1, "div", 0, kZeroInteger},
         Row{1, "mod", 0.5, kZeroInteger}, Row{1e19, "div", 1, kRange}, Row{kNaN, "mod", 1, kRange},
         Row{kNull, "div", 0, "Null"}, Row{u"x", "div", 1, kNoInteger},
         Row{Variant::Array(), "mod", 1, kNoOperation}});
}

TEST_F(VariantOperators, AndOrAreSymmetric) {
  const Row rows[] = {
      {true, "or", false, "Boolean True"},
      {true, "and", true, "Boolean True"},
      {false, "and", kNull, "Boolean False"},
      {true, "and", kNull, "Null"},
      {true, "or", kNull, "Boolean True"},
      {false, "or", kNull, "Null"},
      {kNull, "and", kNull, "Null"},
      {0, "and", kNull, "Null"},
      {12, "or", std::int64_t{3}, "Int64 15"},
      {true, "and", 6, "Integer 6"},
      {true, "or", 6, "Integer -1"},
      {6.5, "and", u"3", "Integer 2"},
      {true, "and", u"True", kNoInteger},
      {1e300, "or", 1, kRange},
      {true, "or", Variant::Array(), kNoOperation},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(Dump(row.a) + " " + row.operation + " " + Dump(row.b));
    EXPECT_EQ(DumpOf([&] { return Calculate(row.operation, row.a, row.b); }), row.result);
    EXPECT_EQ(DumpOf([&] { return Calculate(row.operation, row.b, row.a); }), row.result);
  }
}

TEST_F(VariantOperators, AddToEqualsAddition) {
  const Variant samples[] = {Variant(), kNull, true, 5, 2.5, u"1", u"long text number one"};
  for (const Variant& a : samples) {
    for (const Variant& b : samples) {
      const std::string sum = DumpOf([&] { return a + b; });
      EXPECT_EQ(DumpOf([&] {
                  Variant in_place = a;
                  VarAddTo(in_place, b);
                  return in_place;
                }),
                sum);
    }
  }
  Variant twice = u"twice and long";
  VarAddTo(twice, twice);
  EXPECT_EQ(twice.StringValue(), u"twice and longtwice and long");
}

// The results of the integers are those of exact arithmetic, in the narrowest kind that holds them.
TEST_F(VariantOperators, IntegersAgreeWithExactArithmetic) {
  constexpr unsigned kSeed = 20240;
  SCOPED_TRACE(kSeed);
  std::mt19937_64 random(kSeed);
  for (int i = 0; i < 100'000; ++i) {
    // Of any size: shifted by 0..63 bits, kept where a 32-bit product still fits in 64.
    const auto a = static_cast<std::int64_t>(random()) >> (random() % 33 + 31);
    const auto b = static_cast<std::int64_t>(random()) >> (random() % 33 + 31);
    const auto narrow = [](std::int64_t value) { return value >= kMin32 && value <= kMax32; };
    const auto variant = [&](std::int64_t value) {
      return narrow(value) ? Variant(static_cast<std::int32_t>(value)) : Variant(value);
    };
    const auto check = [&](const Variant& result, std::int64_t exact) {
      const bool small = narrow(a) && narrow(b) && narrow(exact);
      ASSERT_EQ(result.Kind(), small ? VariantKind::kInteger : VariantKind::kInt64)
          << a << ' ' << b;
      ASSERT_EQ(result.Int64Value(), exact) << a << ' ' << b;
    };
    check(variant(a) + variant(b), a + b);
    check(variant(a) - variant(b), a - b);
    if (narrow(a) && narrow(b)) check(variant(a) * variant(b), a * b);
    if (b != 0) check(VarDiv(variant(a), variant(b)), a / b);
    if (b != 0) check(VarMod(variant(a), variant(b)), a % b);
  }
}

struct OrderRow {
  Variant a, b;
  VariantOrder order;
};

VariantOrder Turned(VariantOrder order) {
  if (order == VariantOrder::kLess) return VariantOrder::kGreater;
  return order == VariantOrder::kGreater ? VariantOrder::kLess : order;
}

TEST_F(VariantOperators, CompareEitherWay) {
  constexpr auto kLess = VariantOrder::kLess;
  constexpr auto kEqual = VariantOrder::kEqual;
  constexpr auto kGreater = VariantOrder::kGreater;
  constexpr auto kUnordered = VariantOrder::kUnordered;
  constexpr std::int64_t k53 = std::int64_t{1} << 53;
  for (const OrderRow& row : {OrderRow{kNull, kNull, kEqual},
                              OrderRow{kNull, kNaN, kLess},
                              OrderRow{Variant(), u"", kLess},
                              OrderRow{Variant(), false, kLess},
                              OrderRow{1, std::int64_t{1}, kEqual},
                              OrderRow{0, -0.0, kEqual},
                              OrderRow{k53 + 1, 0x1p53, kGreater},
                              OrderRow{-k53 - 1, -0x1p53, kLess},
                              OrderRow{kMax64, 0x1p63, kLess},
                              OrderRow{kMin64, -0x1p63, kEqual},
                              OrderRow{kMin64, -std::numeric_limits<double>::infinity(), kGreater},
                              OrderRow{kMax64, kNaN, kUnordered},
                              OrderRow{kNaN, kNaN, kUnordered},
                              OrderRow{true, kNaN, kUnordered},
                              OrderRow{Money(kMax64), kMax64, kLess},
                              OrderRow{Money(10001), 1, kGreater},
                              OrderRow{u"a", u"B", kGreater},
                              OrderRow{u"10", u"9", kLess},
                              OrderRow{u"10", 9, kGreater},
                              OrderRow{u"1.0", 1, kEqual},
                              OrderRow{true, u"false", kGreater},
                              OrderRow{false, u"0", kEqual},
                              OrderRow{Variant::Date(45000), u"2023-03-15", kEqual},
                              OrderRow{Variant::Date(45000), 44999.5, kGreater},
                              OrderRow{Variant::ByteArray{std::byte{1}},
                                       Variant::ByteArray{std::byte{1}, std::byte{0}}, kLess}}) {
    SCOPED_TRACE(Dump(row.a) + " beside " + Dump(row.b));
    EXPECT_EQ(VarCompare(row.a, row.b), row.order);
    EXPECT_EQ(VarCompare(row.b, row.a), Turned(row.order));
    EXPECT_EQ(row.a == row.b, row.order == kEqual);
    EXPECT_EQ(row.a != row.b, row.order != kEqual);
    EXPECT_EQ(row.a < row.b, row.order == kLess);
    EXPECT_EQ(row.a <= row.b, row.order == kLess || row.order == kEqual);
    EXPECT_EQ(row.a > row.b, row.order == kGreater);
    EXPECT_EQ(row.a >= row.b, row.order == kGreater || row.order == kEqual);
  }
}

TEST_F(VariantOperators, ComparisonRaisesForWhatDoesNotConvert) {
  const auto equal = [](const Variant& a, const Variant& b) {
    return DumpOf([&] { return a == b; });
  };
  EXPECT_EQ(equal(u"x", 1), kNoNumber);
  EXPECT_EQ(equal(Variant::Array(), Variant::Array()), kNoOperation);
  EXPECT_THROW(VarCompare(true, u"perhaps"), EVariantTypeCastError);
  EXPECT_THROW(VarCompare(Variant::Date(1), u"someday"), EVariantTypeCastError);
}

}  // namespace
}  // namespace zentavo
