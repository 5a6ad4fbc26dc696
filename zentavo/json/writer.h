// The text form of JSON values: internal to the JSON classes.
#pragma once

#include <cstdint>
#include <optional>

#include "zentavo/framework/text.h"
#include "zentavo/json/slot.h"

namespace zentavo::json_internal {

// The widths of the indented form.
struct Indentation {
  std::int32_t factor;
  std::int32_t indent;
};

// `text` as a JSON string, appended to `out`.
void AppendQuoted(String& out, StringView text);
// Compact without an indentation. Takes no stack for nested containers.
void AppendValue(String& out, const Slot& value,
                 std::optional<Indentation> indentation = std::nullopt);
// The compact form.
AnsiString WrittenUtf8(const Slot& value);

}  // namespace zentavo::json_internal
