// A place in JSON text and the steps that readers take from it: internal to the JSON classes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zentavo/framework/text.h"
#include "zentavo/json/errors.h"
#include "zentavo/json/text_buffer.h"

namespace zentavo::json_internal {

class Cursor {
 public:
  explicit Cursor(StringView text) : text_(text) {}

  StringView Text() const { return text_; }
  std::size_t Index() const { return index_; }  // how many units are consumed
  void SetIndex(std::size_t index) { index_ = index; }
  void MoveTo(const char16_t* here) { index_ = static_cast<std::size_t>(here - text_.data()); }
  bool AtEnd() const { return index_ == text_.size(); }
  const char16_t* Here() const { return text_.data() + index_; }
  const char16_t* End() const { return text_.data() + text_.size(); }

  // Consumes blanks, comments and the next significant unit, which it returns; 0 at the end.
  char16_t NextClean() {
    while (index_ < text_.size()) {
      const char16_t unit = text_[index_++];
      if (unit > u' ' && unit != u'/' && unit != u'#' && unit != kByteOrderMark) return unit;
      if (unit > u' ' && !SkipComment(unit)) return unit;
    }
    return 0;
  }
  // The rest of a string behind its opening quote, appended to `out`.
  void AppendString(TextBuffer& out, char16_t quote);
  // The units up to one that ends a bare value, without blanks around them. It stays.
  StringView TakeBare();

  // The exception for the last unit consumed.
  ParseException Error(StringView reason) const;
  ParseException ErrorHere(StringView reason) const { return ErrorAt(reason, index_); }
  ParseException ErrorAt(StringView reason, std::size_t index) const;
  String Description() const;

 private:
  static constexpr char16_t kByteOrderMark = 0xFEFF;

  // Whether the unit, already consumed, begins something to skip, which is then consumed too.
  bool SkipComment(char16_t unit);
  void SkipBlockComment();
  char16_t* CopyPlain(char16_t* out, std::size_t limit, char16_t quote);
  void TakeStringStop(TextBuffer& out, char16_t quote);
  char16_t TakeEscape();
  char16_t TakeHexEscape();

  StringView text_;
  std::size_t index_ = 0;
};

// The value of a hexadecimal digit, -1 for another unit.
std::int32_t HexValue(char16_t unit);

}  // namespace zentavo::json_internal
