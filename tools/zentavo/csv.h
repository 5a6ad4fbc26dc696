// Reading and writing of comma-separated tables (RFC 4180) as a stream, in constant memory.
//
//   record = field { "," field } ( LF | CR LF | end of text )
//   field  = bytes without , LF " | '"' bytes, each '"' doubled '"'
//
// The bytes are UTF-8; a byte-order mark before the first record is no part of it. A carriage
// return that no line feed follows is an ordinary byte. An empty line is no record, unless the
// first record has one field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zentavo/framework/exception.h"

namespace zentavo::tool {

// "line 3: Text behind a closing quote". Lines count from 1, as an editor counts them.
class CsvError : public Exception {
 public:
  CsvError(std::int64_t line, StringView message);
  std::int64_t Line() const { return line_; }

 private:
  std::int64_t line_;
};

struct CsvLimits {
  std::size_t record_bytes = std::size_t{16} << 20;  // of a record without its line break
  std::size_t fields = 65536;                        // of a record
  std::size_t block_bytes = std::size_t{256} << 10;  // asked of the source at a time; at least 1
};

// Neither copied nor moved.
class CsvReader {
 public:
  // Fills the span; returns how much, less than its size only at the end.
  using Source = std::function<std::size_t(std::span<char>)>;

  explicit CsvReader(Source source, CsvLimits limits = {});
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;

  // Reads the next record; false at the end. Raises CsvError "Quote in a field without quotes",
  // "Text behind a closing quote", "Quote without an end", "Record longer than %d bytes", "More
  // than %d fields", and what the source raises.
  bool Next();

  // The fields of the record, without their quotes, and as they were written. All views are valid
  // until the next call of Next.
  std::span<const std::string_view> Fields() const { return fields_; }
  std::span<const std::string_view> WrittenFields() const { return written_; }
  // What ends the record; empty at the end of the text.
  std::string_view LineBreak() const { return line_break_; }
  // The record's first line.
  std::int64_t Line() const { return line_; }
  // Whether the text began with a byte-order mark; known after the first Next.
  bool HasMark() const { return has_mark_; }

 private:
  enum class Scan { kDone, kNeedsMore };

  bool ReadRecord();
  void Fill();
  void SkipMark();
  Scan ScanRecord();
  Scan ScanPlainField();
  Scan ScanQuotedField();
  Scan ScanEnd(bool& record_ends);
  void AddField(std::string_view field, const char* written);
  void Unescape();
  void CheckLength(std::size_t bytes) const;

  Source source_;
  CsvLimits limits_;
  std::vector<char> buffer_;
  const char* begin_ = nullptr;  // the bytes that are not yet records
  const char* end_ = nullptr;
  const char* at_ = nullptr;  // the scan's place in them
  bool source_ended_ = false;
  bool has_mark_ = false;

  std::vector<std::string_view> fields_;
  std::vector<std::string_view> written_;
  std::vector<std::size_t> escaped_;  // the fields that hold doubled quotes
  std::string unescaped_;             // their texts
  std::string_view line_break_;
  std::int64_t line_ = 0;
  std::int64_t next_line_ = 1;
  std::size_t columns_ = 0;  // fields of the first record
};

// The byte-order mark of UTF-8.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

// Gathers records and passes them on in blocks. Neither copied nor moved.
class CsvWriter {
 public:
  using Sink = std::function<void(std::string_view)>;

  explicit CsvWriter(Sink sink) : sink_(std::move(sink)) {}
  CsvWriter(const CsvWriter&) = delete;
  CsvWriter& operator=(const CsvWriter&) = delete;

  // Begins the text with a byte-order mark.
  void Mark() { block_ += kUtf8Mark; }
  // Appends a field to the record, in quotes where it needs them; so does an empty one that is the
  // only one of its record, which would else be an empty line.
  void Field(std::string_view text);
  // Appends a field that is written already, quotes included.
  void WrittenField(std::string_view text);
  void EndRecord(std::string_view line_break = "\n");
  // Passes on what was gathered. Without it the last records are lost.
  void Flush();

 private:
  void Separate();

  Sink sink_;
  std::string block_;
  bool record_begun_ = false;
  bool lone_empty_field_ = false;
};

}  // namespace zentavo::tool
