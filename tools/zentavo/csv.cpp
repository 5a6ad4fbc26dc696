#include "tools/zentavo/csv.h"

#include <cstring>
#include <utility>

#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

constexpr std::size_t kWrittenBlock = std::size_t{256} << 10;  // bytes
constexpr std::size_t kLongestLineBreak = 2;

bool NeedsQuotes(std::string_view text) {
  return text.find_first_of(",\"\r\n") != std::string_view::npos;
}

}  // namespace

CsvError::CsvError(std::int64_t line, StringView message)
    : Exception(u"line " + IntToStr(line) + u": " + String(message)), line_(line) {}

CsvReader::CsvReader(Source source, CsvLimits limits)
    : source_(std::move(source)), limits_(limits), buffer_(limits.block_bytes) {
  begin_ = end_ = buffer_.data();
}

bool CsvReader::Next() {
  bool empty_line = true;
  while (empty_line) {
    line_ = next_line_;
    if (!ReadRecord()) return false;
    empty_line = columns_ > 1 && written_.size() == 1 && written_.front().empty();
  }
  if (columns_ == 0) columns_ = fields_.size();
  return true;
}

bool CsvReader::ReadRecord() {
  if (line_ == 1) SkipMark();
  if (begin_ == end_ && !source_ended_) Fill();
  if (begin_ == end_) return false;
  while (ScanRecord() == Scan::kNeedsMore) Fill();
  CheckLength(static_cast<std::size_t>(at_ - begin_) - line_break_.size());
  Unescape();
  begin_ = at_;
  return true;
}

// Moves the unread bytes to the front and fills the rest, which grows when a record takes it all.
void CsvReader::Fill() {
  const auto size = static_cast<std::size_t>(end_ - begin_);
  if (size > kLongestLineBreak) CheckLength(size - kLongestLineBreak);
  if (size > 0) std::memmove(buffer_.data(), begin_, size);
  if (size > buffer_.size() / 2) buffer_.resize(buffer_.size() * 2);
  const std::span<char> room = std::span(buffer_).subspan(size);
  const std::size_t done = source_(room);
  source_ended_ = done < room.size();
  begin_ = buffer_.data();
  end_ = begin_ + size + done;
}

void CsvReader::SkipMark() {
  const auto unread = [this] {
    return std::string_view(begin_, static_cast<std::size_t>(end_ - begin_));
  };
  while (unread().size() < kUtf8Mark.size() && !source_ended_) Fill();
  if (!unread().starts_with(kUtf8Mark)) return;
  has_mark_ = true;
  begin_ += kUtf8Mark.size();
}

CsvReader::Scan CsvReader::ScanRecord() {
  fields_.clear();
  written_.clear();
  escaped_.clear();
  at_ = begin_;
  next_line_ = line_;
  bool record_ends = false;
  while (!record_ends) {
    if (at_ == end_ && !source_ended_) return Scan::kNeedsMore;
    const bool quoted = at_ < end_ && *at_ == '"';
    if ((quoted ? ScanQuotedField() : ScanPlainField()) == Scan::kNeedsMore ||
        ScanEnd(record_ends) == Scan::kNeedsMore) {
      return Scan::kNeedsMore;
    }
  }
  ++next_line_;
  return Scan::kDone;
}

CsvReader::Scan CsvReader::ScanPlainField() {
  const char* const start = at_;
  while (at_ < end_ && *at_ != ',' && *at_ != '\n' && *at_ != '"') ++at_;
  if (at_ == end_ && !source_ended_) return Scan::kNeedsMore;
  if (at_ < end_ && *at_ == '"') throw CsvError(next_line_, u"Quote in a field without quotes");
  if (at_ < end_ && *at_ == '\n' && at_ > start && at_[-1] == '\r') --at_;
  AddField({start, static_cast<std::size_t>(at_ - start)}, start);
  return Scan::kDone;
}

CsvReader::Scan CsvReader::ScanQuotedField() {
  const char* const start = at_;
  const std::int64_t first_line = next_line_;
  bool escaped = false;
  for (++at_;; ++at_) {
    if (at_ == end_) {
      if (!source_ended_) return Scan::kNeedsMore;
      throw CsvError(first_line, u"Quote without an end");
    }
    if (*at_ == '\n') ++next_line_;
    if (*at_ != '"') continue;
    if (at_ + 1 == end_ && !source_ended_) return Scan::kNeedsMore;
    if (at_ + 1 == end_ || at_[1] != '"') break;
    escaped = true;
    ++at_;
  }
  if (escaped) escaped_.push_back(fields_.size());
  const char* const text = start + 1;
  const auto length = static_cast<std::size_t>(at_ - text);
  ++at_;
  AddField({text, length}, start);
  return Scan::kDone;
}

// Reads what stands behind a field.
CsvReader::Scan CsvReader::ScanEnd(bool& record_ends) {
  const char* const start = at_;
  if (at_ < end_ && *at_ == ',') {
    ++at_;
    return Scan::kDone;
  }
  if (at_ < end_ && *at_ == '\r') ++at_;
  if (at_ == end_ && !source_ended_) return Scan::kNeedsMore;
  record_ends = true;
  if (at_ < end_ && *at_ == '\n') {
    ++at_;
  } else if (start != end_) {
    throw CsvError(next_line_, u"Text behind a closing quote");
  }
  line_break_ = {start, static_cast<std::size_t>(at_ - start)};
  return Scan::kDone;
}

void CsvReader::AddField(std::string_view field, const char* written) {
  if (fields_.size() == limits_.fields) {
    throw CsvError(line_,
                   Format(u"More than %d fields", {static_cast<std::int64_t>(limits_.fields)}));
  }
  fields_.push_back(field);
  written_.emplace_back(written, static_cast<std::size_t>(at_ - written));
}

void CsvReader::CheckLength(std::size_t bytes) const {
  if (bytes <= limits_.record_bytes) return;
  throw CsvError(line_, Format(u"Record longer than %d bytes",
                               {static_cast<std::int64_t>(limits_.record_bytes)}));
}

void CsvReader::Unescape() {
  if (escaped_.empty()) return;
  std::size_t room = 0;
  for (const std::size_t index : escaped_) room += fields_[index].size();
  unescaped_.clear();
  unescaped_.reserve(room);  // so that the views stay valid
  for (const std::size_t index : escaped_) {
    const std::string_view field = fields_[index];
    const std::size_t start = unescaped_.size();
    for (std::size_t i = 0; i < field.size(); ++i) {
      unescaped_ += field[i];
      if (field[i] == '"') ++i;
    }
    fields_[index] = std::string_view(unescaped_).substr(start);
  }
}

void CsvWriter::Field(std::string_view text) {
  if (!NeedsQuotes(text)) {
    lone_empty_field_ = text.empty() && !record_begun_;
    return WrittenField(text);
  }
  Separate();
  block_ += '"';
  for (const char byte : text) {
    if (byte == '"') block_ += '"';
    block_ += byte;
  }
  block_ += '"';
}

void CsvWriter::WrittenField(std::string_view text) {
  Separate();
  block_ += text;
}

void CsvWriter::Separate() {
  if (record_begun_) {
    block_ += ',';
    lone_empty_field_ = false;
  }
  record_begun_ = true;
}

void CsvWriter::EndRecord(std::string_view line_break) {
  if (lone_empty_field_) block_ += "\"\"";
  block_ += line_break;
  record_begun_ = false;
  lone_empty_field_ = false;
  if (block_.size() >= kWrittenBlock) Flush();
}

void CsvWriter::Flush() {
  sink_(block_);
  block_.clear();
}

}  // namespace zentavo::tool
