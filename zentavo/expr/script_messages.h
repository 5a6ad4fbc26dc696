// The errors of script texts: their messages by number, and the exception of the script scanners.
#pragma once

#include <cstdint>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/text.h"

namespace zentavo {

// Raised by the scanners of parse_lib.h; it carries its message and nothing else.
ZENTAVO_DECLARE_EXCEPTION(EScriptException, Exception);

enum TScriptMessage : std::int32_t {
  smAborted = 65520,
  smExpected = 65521,
  smSectionNotFound = 65522,
  smUnterminatedString = 65523,
  smUnexpectedSymbol = 65524,
  smExpectedSymbol = 65525,
  smUndeclaredIdentifier = 65526,
  smMissingOperator = 65527,
};

// The text of a message, "%s" standing for its argument; empty for a number that has none. May be
// called from any thread.
ZENTAVO_API StringView ScriptMessage(std::int32_t Id);
// The same with `Argument` in its place.
ZENTAVO_API String ScriptMessage(std::int32_t Id, StringView Argument);

}  // namespace zentavo
