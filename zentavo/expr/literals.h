// The literals that expressions and script texts share.
#pragma once

#include <optional>

#include "zentavo/framework/text.h"

namespace zentavo::script_scan {

// A number with '.' as the decimal point whatever the locale; a point may end it ("12." is 12).
std::optional<double> ReadFloat(StringView text);

// The one-character string of a character code. Raises EConvertError for a text that is no integer
// and ERangeError "Range check error" outside 0..65535.
String ReadCharacter(StringView code);

}  // namespace zentavo::script_scan
