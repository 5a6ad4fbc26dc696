// How a short date format orders the parts of a date.
#pragma once

#include <array>
#include <optional>

#include "zentavo/framework/date_time.h"

namespace zentavo {

enum class DatePart { kDay, kMonth, kYear };

struct DateOrder {
  std::array<DatePart, 3> parts;
  bool month_is_name = false;
};

// The order of the first d, m and y in `format`; names of weekdays do not count. Parts that are
// missing follow in the order day, month, year.
ZENTAVO_API DateOrder DateOrderOf(StringView format);

// What a date or time format has behind its last letter that is not in quotes: a view of `format`.
ZENTAVO_API StringView FormatTail(StringView format);

// A number as a date's text has it.
struct DateNumber {
  int value = 0;
  int digits = 0;
};

// The date of three numbers in the given order, or of two, the year being the current one; a year
// of one or two digits lies within 50 years behind and 49 ahead of the current one. Nothing for a
// day that is none.
ZENTAVO_API std::optional<TDateTime> DateOfNumbers(const std::array<DateNumber, 3>& numbers,
                                                   int count, const std::array<DatePart, 3>& order);

}  // namespace zentavo
