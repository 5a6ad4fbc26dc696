// Numbers to text and back. No route depends on the C locale.
//
// Functions without settings use the calling thread's (see format_settings.h). All functions may be
// called from any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/text.h"

namespace zentavo {

ZENTAVO_API String IntToStr(std::int64_t value);
ZENTAVO_API void AppendInt(String& out, std::int64_t value);
ZENTAVO_API void AppendUInt(String& out, std::uint64_t value);
// At least `digits` upper-case hexadecimal digits.
ZENTAVO_API String IntToHex(std::uint64_t value, int digits);

// At most 15 significant digits, no zeros at the end; scientific (1E15, 1.2345E-6) with more than
// 15 digits before the point or a magnitude below 0.00001. INF, -INF, NAN. A zero has no sign.
ZENTAVO_API String FloatToStr(double value);
ZENTAVO_API String FloatToStr(double value, const TFormatSettings& settings);
// The same, appended to `out`, with the given decimal separator; the second in ASCII.
ZENTAVO_API void AppendFloat(String& out, double value, char16_t decimal_separator = u'.');
ZENTAVO_API void AppendFloat(AnsiString& out, double value, char decimal_separator = '.');

// `decimals` digits behind the point, with thousands separators when asked for; a number of
// decimals outside 0..18 counts as the nearer end. A value that rounds to zero has no sign. INF,
// -INF, NAN.
enum class Grouping { kNone, kThousands };
ZENTAVO_API String FloatToFixed(double value, int decimals, Grouping grouping,
                                char16_t decimal_separator, char16_t thousand_separator);

// Writes `value` by a pattern: 0 # . , digits, thousands when a ',' stands in the pattern, E+ E-
// e+ e- with the zeros behind them, literals in quotes, up to three sections between ';' (positive;
// negative; zero). All other units are copied.
//
// A '0' always prints a digit, a '#' only one that counts; the digits that find no place before the
// point stand at the first one. The separator is printed when a digit follows it. A section that is
// empty counts as the first one, which prints the minus sign of a negative value before everything
// else; the second prints none. A value that its section rounds to zero counts as zero. "#,###" of
// 0 is the empty text. An empty pattern, an empty first section, an infinity and NaN give
// FloatToStr.
ZENTAVO_API String FormatFloat(StringView pattern, double value);
ZENTAVO_API String FormatFloat(StringView pattern, double value, const TFormatSettings& settings);

// Optional blanks (units 0..32) before, a sign, decimal digits, or hexadecimal ones behind '$', 'x'
// or "0x"; then the end. A number beyond the type's range fails, so does a hexadecimal one:
// "$FFFFFFFF" is no 32-bit integer. The first two raise EConvertError "'%s' is not a valid integer
// value".
ZENTAVO_API std::int32_t StrToInt(StringView text);
ZENTAVO_API std::int64_t StrToInt64(StringView text);
ZENTAVO_API std::int32_t StrToIntDef(StringView text, std::int32_t fallback);
ZENTAVO_API std::int64_t StrToInt64Def(StringView text, std::int64_t fallback);
ZENTAVO_API std::optional<std::int32_t> TryStrToInt(StringView text);
ZENTAVO_API std::optional<std::int64_t> TryStrToInt64(StringView text);

// Blanks (units 0..32) around, a sign, digits with the decimal separator among them, an exponent.
// Digits must follow the separator; before it they may be missing: ".5" is 0.5, "5." fails. No
// thousands separators, no names of infinities. The result is the double nearest to the decimal
// number, however many digits it has; an overflow fails, an underflow gives 0, and "-0" gives 0.
// The raising forms: EConvertError "'%s' is not a valid floating point value". Cost: linear,
// without an allocation.
ZENTAVO_API double StrToFloat(StringView text);
ZENTAVO_API double StrToFloat(StringView text, const TFormatSettings& settings);
ZENTAVO_API double StrToFloatDef(StringView text, double fallback);
ZENTAVO_API std::optional<double> TryStrToFloat(StringView text, char16_t decimal_separator);
ZENTAVO_API std::optional<double> TryStrToFloat(std::string_view text, char decimal_separator);

[[noreturn]] ZENTAVO_API void RaiseNotInteger(StringView text);
[[noreturn]] ZENTAVO_API void RaiseNotFloat(StringView text);

// Round: halves to even. Trunc: toward zero. Out of the 64-bit range, and NaN: EInvalidOp "Invalid
// floating point operation".
ZENTAVO_API std::int64_t Round(double value);
ZENTAVO_API std::int64_t Trunc(double value);

}  // namespace zentavo
