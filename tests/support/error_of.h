// The text of what a call raises.
#pragma once

#include <string>

#include "zentavo/framework/exception.h"

namespace zentavo::testing {

// In UTF-8, the text of the `Expected` or its descendant that `act` raises. Exceptions of other
// classes pass through and fail the test.
template <typename Expected = Exception, typename Act>
std::string ErrorOf(Act&& act) {
  try {
    act();
  } catch (const Expected& error) {
    return error.what();
  }
  return "nothing raised";
}

// The text in the quotes of messages.
inline std::string Quoted(const std::string& text) {
  return std::string("'").append(text).append("'");
}

}  // namespace zentavo::testing
