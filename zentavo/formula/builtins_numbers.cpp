// Built-in functions on numbers.
#include <algorithm>
#include <array>
#include <cmath>

#include "zentavo/formula/builtin_numbers.h"
#include "zentavo/formula/builtin_values.h"
#include "zentavo/formula/parser.h"
#include "zentavo/formula/result_values.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/genlib/number_reading.h"

namespace zentavo {

namespace {

// TruncUp adds this and cuts; a fraction that brings the sum this near to 1 counts as reaching it.
constexpr double kTruncUpNudge = 0.9999999999999;
constexpr double kReachesOne = 1 - 1E-16;

double TruncateUp(double value, double) {
  const double whole = std::trunc(value);
  const double sum = value - whole + kTruncUpNudge;
  if (value < 0) return whole < 0 && sum > 0 ? whole + 1 : whole;
  return sum >= kReachesOne ? whole + 1 : whole;
}

double Truncate(double value, double) {
  return std::trunc(value);
}
double Absolute(double value, double) {
  return std::abs(value);
}

// Exact for the exponents that occur.
double PowerOfTen(double exponent) {
  static constexpr std::array<double, 16> kPowers = {1E0, 1E1, 1E2,  1E3,  1E4,  1E5,  1E6,  1E7,
                                                     1E8, 1E9, 1E10, 1E11, 1E12, 1E13, 1E14, 1E15};
  return exponent < 16 ? kPowers[static_cast<std::size_t>(exponent)] : std::pow(10.0, exponent);
}

// Half a unit of the last place away from zero, then cut.
double RoundByNudge(double value, double digits) {
  const double places = std::trunc(std::isnan(digits) ? 0 : digits);
  const double power = PowerOfTen(std::abs(places));
  const double half = places < 0 ? 0.5 * power : 0.5 / power;
  const double nudged = value >= 0 ? value + half : value - half;
  const double scaled = places < 0 ? nudged / power : nudged * power;
  if (!std::isfinite(power) || !std::isfinite(scaled)) return value;
  return places < 0 ? std::trunc(scaled) * power : std::trunc(scaled) / power;
}

// A step such as 0.05 is no double, but a whole number of them gives 1: counting in parts of 1
// keeps the multiples exact.
double RoundToStep(double value, double step) {
  const double size = step == 0 ? 1 : std::abs(step);
  const double parts_of_one = std::round(1 / size);
  const bool divides_one = parts_of_one >= 1 && size * parts_of_one == 1;
  const double count = std::round(divides_one ? value * parts_of_one : value / size);
  return divides_one ? count / parts_of_one : count * size;
}

// part / whole in percent, 0 when there is no whole.
double Percentage(double part, double whole) {
  return whole == 0 ? 0 : part / whole * 100;
}
double PercentageOver(double value, double base) {
  return Percentage(value - base, base);
}
double PercentageBelow(double price, double cost) {
  return Percentage(price - cost, price);
}

template <typename Better>
void Select(TResult& result, const TArguments& args, Better better) {
  result.ResultType = resNumber;
  for (std::int32_t index = 0; index < args.Count(); ++index) {
    const double value = args.Items(index).ResultNum;
    if (index == 0 || better(value, result.ResultNum)) result.ResultNum = value;
  }
}

struct NumberBuiltin {
  std::int32_t id;
  std::int32_t least, most;  // arguments
  NumberFunction function;
  double second;  // when it is missing
};

constexpr NumberBuiltin kNumberBuiltins[] = {
    {4, 1, 2, RoundByNudge, 0},    {7, 1, 1, Truncate, 0},         {23, 2, 2, Percentage, 0},
    {24, 2, 2, PercentageOver, 0}, {25, 2, 2, PercentageBelow, 0}, {28, 1, 2, RoundToStep, 1},
    {29, 1, 1, TruncateUp, 0},     {36, 1, 1, Absolute, 0},
};

// Calls `function` with the first two arguments.
void SetNumber(TResult& result, NumberFunction function, const TArguments& args, double second) {
  result.ResultType = resNumber;
  if (args.Count() > 1) second = args.Items(1).ResultNum;
  result.ResultNum = function(args.Items(0).ResultNum, second);
}

}  // namespace

void TXParser::MaxProc(TResult& Result, TArguments& Args) {
  Select(Result, Args, std::greater<>());
}
void TXParser::MinProc(TResult& Result, TArguments& Args) {
  Select(Result, Args, std::less<>());
}

void TXParser::NumTypeProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"Number");
  const TResult& value = Args.Items(0);
  Result.ResultType = resNumber;
  Result.ResultNum =
      value.ResultType == resString ? LcStrToFloat(value.ResultStr) : value.ResultNum;
}

void TXParser::IntTypeProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"Integer");
  Result.ResultType = resNumber;
  Result.ResultNum = static_cast<double>(Round(Args.Items(0).ResultNum));
}

void TXParser::TruncProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() >= 1, u"Trunc");
  SetNumber(Result, Truncate, Args, 0);
}

void TXParser::TruncUpProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() >= 1, u"TruncUp");
  SetNumber(Result, TruncateUp, Args, 0);
}

void TXParser::RoundProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1 || Args.Count() == 2, u"Round");
  SetNumber(Result, RoundByNudge, Args, 0);
}

void TXParser::ARoundProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1 || Args.Count() == 2, u"ARound");
  SetNumber(Result, RoundToStep, Args, 1);
}

void TXParser::AbsProc(TResult& Result, TArguments& Args) {
  CheckArguments(Args.Count() == 1, u"Abs");
  SetNumber(Result, Absolute, Args, 0);
}

// The three below do not check their arguments: a missing one is a list index error, which callers
// rely on.
void TXParser::PercentProc(TResult& Result, TArguments& Args) {
  SetNumber(Result, Percentage, Args, Args.Items(1).ResultNum);
}

void TXParser::DPercentProc(TResult& Result, TArguments& Args) {
  SetNumber(Result, PercentageOver, Args, Args.Items(1).ResultNum);
}

void TXParser::MarginProc(TResult& Result, TArguments& Args) {
  SetNumber(Result, PercentageBelow, Args, Args.Items(1).ResultNum);
}

NumberFunction NumberFunctionOf(std::int32_t id, std::int32_t argument_count, double* second) {
  for (const NumberBuiltin& builtin : kNumberBuiltins) {
    if (builtin.id != id) continue;
    *second = builtin.second;
    const bool right = argument_count >= builtin.least && argument_count <= builtin.most;
    return right ? builtin.function : nullptr;
  }
  return nullptr;
}

}  // namespace zentavo
