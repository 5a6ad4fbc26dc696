// The text form of single JSON values, and values read from whole texts.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "zentavo/json/value.h"

namespace zentavo {

class TStream;
class Variant;

// `Text` as a JSON string: in double quotes, all but ASCII letters, digits and !$'()*-.@_/ escaped;
// '/' too behind '<'. Pure ASCII, safe inside HTML and URLs.
ZENTAVO_API String quote(StringView Text);

// The text form of a value, "null" for a null pointer: compact, or indented as containers are.
ZENTAVO_API String valueToString(const TZAbstractObject* Value);
ZENTAVO_API String valueToString(const TZAbstractObject* Value, std::int32_t IndentFactor,
                                 std::int32_t Indent = 0);

// The one value, of any kind, that `Text` is. Raise ParseException, also "Unexpected text after the
// value".
ZENTAVO_API std::unique_ptr<TZAbstractObject> ReadJSON(StringView Text);
ZENTAVO_API std::unique_ptr<TZAbstractObject> ReadJSONUtf8(std::string_view Text);
// From the stream's position to its end, as UTF-8.
ZENTAVO_API std::unique_ptr<TZAbstractObject> ReadJSON(TStream& Source);

// Lends the value at a path of keys and indices between '/', null when there is none. The empty
// path is the value itself.
ZENTAVO_API const TZAbstractObject* FindByPath(const TZAbstractObject& Value, StringView Path);

// Null, boolean, integer, double and string become variants of their kinds, a missing value Empty,
// an array an array of variants, an object an array of arrays of key and value. Host classes raise
// ClassCastException "CLASS has no variant form".
ZENTAVO_API Variant JSONToVariant(const TZAbstractObject* Value);
// Null and Empty become null; an integer of more than 32 bits, a single and a currency a double; a
// date the string "yyyy-mm-ddThh:nn:ss". An array of bytes raises ClassCastException "An array of
// bytes has no JSON form".
ZENTAVO_API std::unique_ptr<TZAbstractObject> JSONFromVariant(const Variant& Value);

}  // namespace zentavo
