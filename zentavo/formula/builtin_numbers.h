// Built-in functions that give a number from one or two numbers, whatever the types.
#pragma once

#include <cstdint>

namespace zentavo {

using NumberFunction = double (*)(double first, double second);

// The built-in `id` as such a function for a call with `argument_count` arguments, where a missing
// second one counts `*second`; null when it is no such function or the count is wrong.
NumberFunction NumberFunctionOf(std::int32_t id, std::int32_t argument_count, double* second);

}  // namespace zentavo
