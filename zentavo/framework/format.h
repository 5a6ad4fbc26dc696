// Text from a pattern and arguments.
//
//   Format(u"%s: %d items, %.2f", {name, count, total});
//
// A placeholder is %[index:][-][width][.precision]type; width and precision may be *, which takes
// them from the arguments. An index, from 0, names the argument; the next ones follow it. '-' pads
// at the right. Types count in either case:
//
//   d u x    integers; a precision pads with zeros
//   s        text; a precision cuts
//   p        pointer, in hexadecimal
//   e        scientific with `precision` digits in all (15) and a three-digit exponent: 1.50E+003
//   f n m    fixed with `precision` decimals (2; m: the settings'), n and m with thousands, m
//   behind
//            the currency text: -$1,234.50
//   g        the shorter of fixed and scientific with at most `precision` (15) digits
//   %%       a percent sign
//
// Raises EConvertError "Format '%s' invalid or incompatible with argument" for a wrong type, a
// malformed placeholder, a width or precision above 65535; "No argument for format '%s'" for a
// missing one. May be called from any thread.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class Variant;

// One argument: an integer, a floating-point number, a text or a pointer. Refers to the UTF-16 text
// it was made from, which must outlive it. Negative integers of up to 32 bits print as 32 bits with
// %u and %x.
class ZENTAVO_API FormatArg {
 public:
  template <std::integral T>
  FormatArg(T value)  // NOLINT(google-explicit-constructor): arguments are written as they are
      : value_(static_cast<Widest<T>>(value)), is_wide_(sizeof(T) > sizeof(std::int32_t)) {}
  FormatArg(char16_t value) : value_(String(1, value)) {}
  FormatArg(double value) : value_(value) {}
  FormatArg(StringView value) : value_(value) {}
  FormatArg(const String& value) : value_(StringView(value)) {}
  FormatArg(const char16_t* value) : value_(StringView(value)) {}
  FormatArg(std::string_view value) : value_(FromUtf8(value)) {}
  FormatArg(const char* value) : value_(FromUtf8(value)) {}
  FormatArg(const void* value) : value_(value) {}
  // A variant counts as the kind it holds: integers and booleans as integers, singles, doubles and
  // currencies as numbers, everything else as its text; Null and Empty as the empty text.
  FormatArg(const Variant& value);

  using Value = std::variant<std::int64_t, std::uint64_t, double, StringView, String, const void*>;
  const Value& Get() const { return value_; }
  bool IsWide() const { return is_wide_; }  // an integer of more than 32 bits

 private:
  template <typename T>
  using Widest = std::conditional_t<std::signed_integral<T>, std::int64_t, std::uint64_t>;

  Value value_;
  bool is_wide_ = true;
};

ZENTAVO_API String Format(StringView pattern, std::span<const FormatArg> args);
ZENTAVO_API String Format(StringView pattern, std::span<const FormatArg> args,
                          const TFormatSettings& settings);
inline String Format(StringView pattern, std::initializer_list<FormatArg> args) {
  return Format(pattern, std::span<const FormatArg>(args.begin(), args.size()));
}

}  // namespace zentavo
