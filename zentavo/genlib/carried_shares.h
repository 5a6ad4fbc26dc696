// Shares of an amount, one weight after the other.
#pragma once

#include <cmath>
#include <cstdint>

#include "zentavo/genlib/amounts.h"

namespace zentavo {

// Rounds each share and carries its rounding error to the next.
class CarriedShares {
 public:
  CarriedShares(double sum_of_weights, double amount, int decimals)
      : sum_(sum_of_weights), amount_(amount), decimals_(decimals) {}

  double Next(double weight) {
    if (ZentavoDoubleEqual(weight, 0)) return 0;
    const double exact = weight / sum_ * amount_ + carry_;
    const double share = ZentavoDoubleRnd(exact, decimals_);
    carry_ = exact - share;
    allocated_ += share;
    return share;
  }

  double Rest() const { return amount_ - allocated_; }
  bool HasRest() const { return !ZentavoDoubleEqual(allocated_, amount_); }

 private:
  double sum_;
  double amount_;
  int decimals_;
  double carry_ = 0;
  double allocated_ = 0;
};

// Notices the largest of the values it is shown. What it compares with is the last one noticed with
// its sign, so that behind a negative one every other value counts as larger.
class LargestShare {
 public:
  bool IsLarger(double value) {
    if (!(std::fabs(value) > largest_)) return false;
    largest_ = value;
    return true;
  }

 private:
  double largest_ = 0;
};

}  // namespace zentavo
