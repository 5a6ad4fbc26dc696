// Rows of a table as text: "given -> expected".
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "zentavo/framework/text.h"

namespace zentavo::testing {

// What stands in front of and behind the first " -> ".
inline std::pair<StringView, StringView> Sides(StringView row) {
  const std::size_t mark = row.find(u" -> ");
  return {row.substr(0, mark), row.substr(mark + 4)};
}

// Expects of each row that `give` makes of its first side the second, as UTF-8.
template <typename Give>
void ExpectRows(std::initializer_list<StringView> rows, Give give) {
  for (const StringView row : rows) {
    const auto [given, expected] = Sides(row);
    EXPECT_EQ(give(given), ToUtf8(expected)) << ToUtf8(row);
  }
}

}  // namespace zentavo::testing
