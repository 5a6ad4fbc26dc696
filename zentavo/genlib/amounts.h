// The library's rules for comparing and rounding amounts.
//
// All arithmetic is in double precision, the same on every platform. Functions may be called from
// any thread.
#pragma once

#include <cstdint>

#include "zentavo/platform/export.h"

namespace zentavo {

// Whether the two differ by less than a tolerance that goes with the larger magnitude: 1E-9 up to
// 99999.9999, ten times as much for each further digit, 0.0001 above 999999999.9999. NaN equals
// everything, and an infinity itself; callers rely on never seeing a NaN fail the test.
ZENTAVO_API bool ZentavoDoubleEqual(double A, double B);

enum : int { rndUp = 1, rndDown = 2 };

// `Value` to `Decimals` decimals (negative: to tens, hundreds, ...), halves away from zero; a value
// less than 0.000001 of the last decimal below a half counts as the half: 1.005 gives 1.01. The
// second form with rndUp or rndDown first cuts away from or toward zero, in plain double
// arithmetic: 1.1 to two decimals up is 1.11, as 1.1 * 100 is a little above 110. Other modes round
// as the first form does.
//
// NaN, the infinities and values too large to have such decimals come back as they are; 0 where
// 10^-Decimals is beyond the doubles' range. Up and down raise EZentavoError "%s is too large to be
// rounded up or down to %d decimals" where the value counted in its last decimal does not fit in 32
// bits, infinities and NaN included.
ZENTAVO_API double ZentavoDoubleRnd(double Value, int Decimals);
ZENTAVO_API double ZentavoDoubleRnd(double Value, int Decimals, int Mode);

// `Value` to the nearest multiple of `Step`, halves away from zero: 12.34 by 0.05 gives 12.35.
// Where the number of steps exceeds 9.223E18 the value is rounded to the step's decimals. NaN and
// the infinities come back as they are. Raises EZentavoError "'%s' is not a step to round to" for a
// step that is 0, not finite, or so small that its reciprocal is not.
ZENTAVO_API double xARoundProc(double Value, double Step);

}  // namespace zentavo
