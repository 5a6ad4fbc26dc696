// The text form of JSON values: internal to the JSON classes.
#pragma once

#include <cstdint>
#include <optional>

#include "zentavo/json/text_buffer.h"
#include "zentavo/json/value.h"
#include "zentavo/json/value_view.h"

namespace zentavo::json_internal {

// The widths of the indented form.
struct Indentation {
  std::int32_t factor;
  std::int32_t indent;
};

void AppendQuoted(TextBuffer& out, StringView text);
void AppendInteger(TextBuffer& out, std::int32_t value);
// "######0.000000", always six decimals.
void AppendDouble(TextBuffer& out, double value);
// Compact without an indentation. Takes no stack for nested containers.
void AppendValue(TextBuffer& out, const ValueView& value,
                 std::optional<Indentation> indentation = std::nullopt);

}  // namespace zentavo::json_internal
