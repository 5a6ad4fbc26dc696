// Rows of a table as text: "given -> expected".
#pragma once

#include <string_view>
#include <utility>

namespace zentavo::testing {

// What stands in front of and behind the first " -> ".
inline std::pair<std::u16string_view, std::u16string_view> Sides(std::u16string_view row) {
  const std::size_t mark = row.find(u" -> ");
  return {row.substr(0, mark), row.substr(mark + 4)};
}

}  // namespace zentavo::testing
