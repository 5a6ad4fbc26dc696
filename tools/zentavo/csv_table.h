// Tables that a command takes in whole.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo::tool {

// Calls take(fields, line) for every record, the header included. Raises what reading raises, and
// CsvError "5 fields instead of 4" where a record differs from the first. Shows its progress.
void ForEachRecord(
    const std::string& file,
    const std::function<void(std::span<const std::string_view>, std::int64_t)>& take);

// The items of "A,B,...", as the fields of a CSV record are written: quotes take commas in. None of
// the empty text.
std::vector<std::string> SplitItems(const std::string& argument);

// The place of the column of that title, without regard to case. Raises Exception "No column 'Name'
// in FILE".
std::size_t PlaceOfColumn(std::span<const std::string_view> titles, StringView title,
                          const std::string& file);

}  // namespace zentavo::tool
