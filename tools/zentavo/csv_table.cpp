#include "tools/zentavo/csv_table.h"

#include <algorithm>
#include <cstring>

#include "tools/zentavo/csv.h"
#include "tools/zentavo/files.h"
#include "tools/zentavo/progress.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"

namespace zentavo::tool {

void ForEachRecord(
    const std::string& file,
    const std::function<void(std::span<const std::string_view>, std::int64_t)>& take) {
  InputFile input(file);
  CsvReader reader([&](std::span<char> block) { return input.Read(block); });
  Progress progress("rows");
  std::size_t columns = 0;
  while (reader.Next()) {
    const std::span<const std::string_view> fields = reader.Fields();
    if (columns == 0) columns = fields.size();
    if (fields.size() != columns) {
      throw CsvError(reader.Line(),
                     Format(u"%d fields instead of %d", {static_cast<std::int64_t>(fields.size()),
                                                         static_cast<std::int64_t>(columns)}));
    }
    take(fields, reader.Line());
    progress.Advance();
  }
}

std::vector<std::string> SplitItems(const std::string& argument) {
  std::string_view rest = argument;
  CsvReader reader([&](std::span<char> block) {
    const std::size_t size = std::min(block.size(), rest.size());
    std::memcpy(block.data(), rest.data(), size);
    rest.remove_prefix(size);
    return size;
  });
  if (!reader.Next()) return {};
  return {reader.Fields().begin(), reader.Fields().end()};
}

std::size_t PlaceOfColumn(std::span<const std::string_view> titles, StringView title,
                          const std::string& file) {
  const auto found = std::find_if(titles.begin(), titles.end(), [&](std::string_view other) {
    return SameText(FromUtf8(other), title);
  });
  if (found == titles.end()) {
    throw Exception(u"No column '" + Excerpt(title) + u"' in " + FromUtf8(file));
  }
  return static_cast<std::size_t>(found - titles.begin());
}

}  // namespace zentavo::tool
