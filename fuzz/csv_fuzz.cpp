// Reads any bytes as a table in blocks of any size: the size never changes what is read, limits
// hold, and what was read and is written again reads the same.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zentavo/csv.h"

namespace {

using zentavo::tool::CsvError;
using zentavo::tool::CsvLimits;
using zentavo::tool::CsvReader;
using zentavo::tool::CsvWriter;

struct Table {
  std::vector<std::vector<std::string>> records;
  std::string error;
  bool operator==(const Table&) const = default;
};

Table Read(std::string_view text, CsvLimits limits) {
  const std::size_t text_size = text.size();
  Table table;
  CsvReader reader(
      [&](std::span<char> block) {
        const std::size_t count = std::min(block.size(), text.size());
        std::copy_n(text.data(), count, block.data());
        text.remove_prefix(count);
        return count;
      },
      limits);
  try {
    while (reader.Next()) {
      table.records.emplace_back(reader.Fields().begin(), reader.Fields().end());
    }
  } catch (const CsvError& error) {
    // A record that is too long may have other faults, which a longer block shows first.
    table.error = text_size > limits.record_bytes ? "an error" : error.what();
  }
  return table;
}

std::string Write(const Table& table) {
  std::string text;
  CsvWriter writer([&](std::string_view block) { text += block; });
  writer.Mark();
  for (const auto& record : table.records) {
    for (const std::string& field : record) writer.Field(field);
    writer.EndRecord();
  }
  writer.Flush();
  return text;
}

void Require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  const CsvLimits limits{.record_bytes = 200, .fields = 20, .block_bytes = 4096};
  CsvLimits small = limits;
  small.block_bytes = 1 + data[0] % 32;
  Table table = Read(text, limits);
  Require(Read(text, small) == table);
  for (const auto& record : table.records) Require(record.size() <= limits.fields);
  table.error.clear();
  Require(Read(Write(table), {.block_bytes = 4096}) == table);
  return 0;
}
