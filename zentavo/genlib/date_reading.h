// Dates read from text that users typed.
#pragma once

#include "zentavo/framework/date_time.h"

namespace zentavo {

// Reads a date leniently: yyyy-mm-dd in every locale; otherwise day, month and year in the order of
// the thread's short date format, between any of . / - and blanks, or eight or six digits in a row.
// A number of four digits at the front is a year, which month and day follow. A missing year is the
// current one; a year of two digits lies within 50 years behind and 49 ahead of it. A time behind
// the date, after blanks or 'T', is dropped when it is one. What the thread's short date format
// prints is read too, names of months included. A blank text is 0. Raises EConvertError "'%s' is
// not a valid date". Cost: linear. May be called from any thread.
ZENTAVO_API TDateTime StringToDate(StringView text);

}  // namespace zentavo
