#include "zentavo/json/cursor.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "zentavo/framework/number_text.h"
#include "zentavo/json/bare_value.h"

namespace zentavo::json_internal {

namespace {

constexpr std::size_t kBlockUnits = 8;  // looked at together; the loop below is one for vectors

// The first of eight units that is `quote`, a backslash, a line feed or a carriage return;
// kBlockUnits when none is.
std::size_t FirstEnd(const char16_t* units, char16_t quote) {
  std::uint16_t ends[kBlockUnits];
  for (std::size_t index = 0; index < kBlockUnits; ++index) {
    const char16_t unit = units[index];
    const bool end = (unit == quote) | (unit == u'\\') | (unit == u'\n') | (unit == u'\r');
    ends[index] = end ? 0xFFFF : 0;
  }
  std::uint64_t halves[2];
  std::memcpy(halves, ends, sizeof halves);
  if ((halves[0] | halves[1]) == 0) return kBlockUnits;
  const bool in_first = halves[0] != 0;
  const std::uint64_t half = halves[in_first ? 0 : 1];
  const int bits =
      std::endian::native == std::endian::little ? std::countr_zero(half) : std::countl_zero(half);
  return static_cast<std::size_t>(bits) / 16 + (in_first ? 0 : kBlockUnits / 2);
}

bool EndsRun(char16_t unit, char16_t quote) {
  return unit == quote || unit == u'\\' || unit == u'\n' || unit == u'\r';
}

ParseException::Place PlaceOf(StringView text, std::size_t index) {
  ParseException::Place place{1, 1};
  for (std::size_t at = 0; at < index; ++at) {
    const bool pair = text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
    if ((text[at] == u'\n' || text[at] == u'\r') && !pair) {
      place = {place.line + 1, 1};
    } else {
      ++place.column;
    }
  }
  return place;
}

}  // namespace

std::int32_t HexValue(char16_t unit) {
  if (IsDigit(unit)) return unit - u'0';
  const char16_t upper = UpCase(unit);
  return upper >= u'A' && upper <= u'F' ? upper - u'A' + 10 : -1;
}

bool Cursor::SkipComment(char16_t unit) {
  if (unit == kByteOrderMark) return index_ == 1;
  if (unit == u'/') {
    if (AtEnd() || (*Here() != u'/' && *Here() != u'*')) return false;
    if (text_[index_++] == u'*') {
      SkipBlockComment();
      return true;
    }
  }
  const std::size_t end = text_.find_first_of(u"\n\r", index_);
  index_ = end == StringView::npos ? text_.size() : end;
  return true;
}

void Cursor::SkipBlockComment() {
  const std::size_t end = text_.find(u"*/", index_);
  index_ = end == StringView::npos ? text_.size() : end + 2;
  if (end == StringView::npos) throw ErrorHere(u"Unclosed comment.");
}

// Copies what comes before the next unit that can end a run; at most `limit` units, and `out` has
// room for a block more.
char16_t* Cursor::CopyPlain(char16_t* out, std::size_t limit, char16_t quote) {
  const char16_t* here = Here();
  const char16_t* end = here + limit;
  std::size_t done = kBlockUnits;
  while (done == kBlockUnits && static_cast<std::size_t>(end - here) >= kBlockUnits) {
    std::memcpy(out, here, kBlockUnits * sizeof(char16_t));
    done = FirstEnd(here, quote);
    here += done;
    out += done;
  }
  if (done == kBlockUnits) {
    while (here < end && !EndsRun(*here, quote)) *out++ = *here++;
  }
  MoveTo(here);
  return out;
}

void Cursor::AppendString(TextBuffer& out, char16_t quote) {
  constexpr std::size_t kPart = 256;  // units that room is made for at once
  for (;;) {
    const std::size_t part = std::min(text_.size() - index_, kPart);
    out.SetEnd(CopyPlain(out.Room(part + kBlockUnits), part, quote));
    if (!AtEnd() && *Here() == quote) break;
    TakeStringStop(out, quote);
  }
  ++index_;
}

// What interrupts a run before the closing quote: an escape, or the end of the room for it.
void Cursor::TakeStringStop(TextBuffer& out, char16_t quote) {
  if (AtEnd()) throw ErrorHere(u"Unterminated string");
  const char16_t unit = *Here();
  if (!EndsRun(unit, quote)) return;
  ++index_;
  if (unit != u'\\') throw Error(u"Unterminated string");
  out.Add(TakeEscape());
}

char16_t Cursor::TakeEscape() {
  if (AtEnd()) throw ErrorHere(u"Unterminated string");
  const char16_t unit = text_[index_++];
  switch (unit) {
    case u'b': return u'\b';
    case u't': return u'\t';
    case u'n': return u'\n';
    case u'f': return u'\f';
    case u'r': return u'\r';
    case u'u': return TakeHexEscape();
    default: return unit;
  }
}

char16_t Cursor::TakeHexEscape() {
  std::int32_t code = 0;
  for (int count = 0; count < 4; ++count) {
    const std::int32_t digit = AtEnd() ? -1 : HexValue(text_[index_]);
    if (digit < 0) throw ErrorHere(u"Illegal escape");
    code = code * 16 + digit;
    ++index_;
  }
  return static_cast<char16_t>(code);
}

StringView Cursor::TakeBare() {
  const char16_t* end = Here();
  while (end < End() && !EndsBare(*end)) ++end;
  const StringView bare(Here(), static_cast<std::size_t>(end - Here()));
  index_ += bare.size();
  return TrimView(bare);
}

String Cursor::Description() const {
  return u" at character " + IntToStr(static_cast<std::int64_t>(index_)) + u" of " + String(text_);
}

ParseException Cursor::Error(StringView reason) const {
  return ErrorAt(reason, index_ == 0 ? 0 : index_ - 1);
}

ParseException Cursor::ErrorAt(StringView reason, std::size_t index) const {
  return ParseException(String(reason), String(reason) + u" JSON Syntax Error : " + Description(),
                        static_cast<std::int32_t>(index_), PlaceOf(text_, index));
}

}  // namespace zentavo::json_internal
