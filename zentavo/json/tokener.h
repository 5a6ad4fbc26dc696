// The reader of JSON text, step by step or a value at a time. It reads more than strict JSON:
//
//   value     = string | object | array | bare
//   string    = '"' ... '"' | "'" ... "'"           escapes: \b \t \n \f \r \uXXXX, \ANY is ANY
//   object    = '{' { key sep value ( ',' | ';' ) } '}'   sep: ':' '=' '=>'; key: any value
//   array     = '[' { [ value ] ( ',' | ';' ) } ']'       nothing before a ',' is an empty slot
//   bare      = what reaches to one of , : ] } / \ " [ { ; = # or a control unit, without the
//   blanks
//               around it: true false null in any case, 0x1F, 017 (octal), 12, 1.5, 1e3, else a
//               text
//
// Between tokens it skips units 0..32 and the comments // # (to the end of the line) and /* */. A
// separator may stand before the closing bracket. A byte-order mark at the start is skipped.
//
//   JSONTokener tokener(u"[1, 2] {a: b}");
//   tokener.nextValue();  // the array
//   tokener.nextValue();  // the object
//
// Errors are ParseException. A tokener is used by one thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "zentavo/json/source.h"
#include "zentavo/json/value.h"

namespace zentavo {

class TJSONArray;
class TJSONObject;
class TStream;

// How many containers may be open in each other when a text is read; one more raises "Nesting too
// deep". A reader takes any other limit.
inline constexpr std::int32_t kMaxJSONDepth = 512;

// Neither copied nor moved.
class ZENTAVO_API JSONTokener {
 public:
  explicit JSONTokener(String Text);
  JSONTokener(const JSONTokener&) = delete;
  JSONTokener& operator=(const JSONTokener&) = delete;

  std::int32_t MaxDepth() const { return FMaxDepth; }
  void SetMaxDepth(std::int32_t Depth) { FMaxDepth = Depth; }

  // Takes back the last unit; nothing when `next` has just met the end, or at the start.
  void back();
  bool more() const { return FIndex < FText.size(); }
  char16_t next();  // unit 0 at the end
  // Raises "Expected X and instead saw Y." unless the next unit is `Ch`.
  char16_t next(char16_t Ch);
  String next(std::int32_t N);  // raises "Substring bounds error" when fewer remain
  char16_t nextClean();         // the next significant unit; 0 at the end
  String nextString(char16_t Quote);
  // The text up to a delimiter or the line's end, which stays, without blanks around it.
  String nextTo(char16_t Ch) { return nextTo(StringView(&Ch, 1)); }
  String nextTo(StringView Delimiters);
  std::unique_ptr<TZAbstractObject> nextValue();
  // Moves to the next `Ch`, which stays, and returns it; without one 0, and nothing moves.
  char16_t skipTo(char16_t Ch);
  void skipPast(StringView Text);  // to the end when it does not occur

  static std::int32_t dehexchar(char16_t Ch);  // -1 for no hexadecimal digit
  // `Text` with each %XX replaced by the unit of that code and each '+' by a blank.
  static String unescape(StringView Text);
  ParseException syntaxError(StringView Msg) const;
  String toString() const;  // " at character " + index + " of " + the text

 private:
  friend class TJSONArray;
  friend class TJSONObject;

  using Place = const char16_t*;

  Place Here() const { return FText.data() + FIndex; }
  void MoveTo(Place here) { FIndex = static_cast<std::size_t>(here - FText.data()); }
  json_internal::Source<char16_t> Whole() const;
  // What `read` makes of the source from here on. The index goes behind it, or to what is wrong.
  template <typename Step>
  auto Take(Step read);
  // A value that must be of `kind`, an object or an array.
  std::unique_ptr<TZAbstractObject> TakeContainer(JSONKind kind);

  String FText;
  std::size_t FIndex = 0;
  std::int32_t FMaxDepth = kMaxJSONDepth;
  bool FMetEnd = false;
};

namespace json_internal {
AnsiString RestOf(TStream& source);
}

}  // namespace zentavo
