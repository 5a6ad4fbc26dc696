// Allocation of an amount over weights, so that the rounded shares add up to the amount.
//
//   double shares[3] = {};
//   ZentavoEpimerismos(std::array{1.0, 1.0, 1.0}, shares, 100, 2);  // 33.33, 33.34, 33.33
//
// Each share carries its rounding error to the next; a rest, if any, goes to the largest one. The
// shares add up to the last decimal while the amount has at most 15 digits, decimals included.
#pragma once

#include <cstdint>
#include <span>

#include "zentavo/platform/export.h"

namespace zentavo {

class TDataSet;
class TField;

// Adds to each of `Shares` the share of its weight, rounded to `Decimals`; a weight that equals 0
// gets nothing, and when the weights together equal 0, nothing changes. A rest is rounded and goes
// to the first element with the largest magnitude, counting what the array held before; among
// negative ones to the last that is not 0, which callers rely on. Weights and amounts that are not
// finite give shares that are not. `Shares` must have as many elements as `Weights`, else it is
// left alone and ERangeError "Range check error" raised. May be called from any thread.
ZENTAVO_API void ZentavoEpimerismos(std::span<const double> Weights, std::span<double> Shares,
                                    double Amount, std::int16_t Decimals);

// The same from a field of each record of `Source`, which ends up at its end, to a field of each
// record of `Target`; null counts 0. `Source` and `Target` may be the same. The records are posted
// with ZentavoPost; what Edit and posting raise passes to the caller and leaves the records before
// changed. Here the rest is not rounded. Records of `Target` without a weight stay as they are.
ZENTAVO_API void ZentavoEpimerismos(TDataSet& Source, const TField& WeightField, TDataSet& Target,
                                    TField& TargetField, double Amount, std::int16_t Decimals);

}  // namespace zentavo
