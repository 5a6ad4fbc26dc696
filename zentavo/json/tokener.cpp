#include "zentavo/json/tokener.h"

#include <utility>

#include "zentavo/framework/stream.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/reader.h"

namespace zentavo {

using json_internal::Cursor;
using json_internal::Reader;
using json_internal::TextBuffer;

JSONTokener::JSONTokener(String Text) : FText(std::move(Text)), FCursor(FText) {}

void JSONTokener::back() {
  if (!FMetEnd && FCursor.Index() > 0) FCursor.SetIndex(FCursor.Index() - 1);
  FMetEnd = false;
}

char16_t JSONTokener::next() {
  FMetEnd = FCursor.AtEnd();
  if (FMetEnd) return 0;
  const char16_t unit = *FCursor.Here();
  FCursor.SetIndex(FCursor.Index() + 1);
  return unit;
}

char16_t JSONTokener::next(char16_t Ch) {
  const char16_t found = next();
  if (found == Ch && !FMetEnd) return found;
  const String seen = FMetEnd ? String() : String(1, found);
  throw syntaxError(u"Expected " + String(1, Ch) + u" and instead saw " + seen + u".");
}

String JSONTokener::next(std::int32_t N) {
  if (N < 0 || std::cmp_greater(N, FCursor.End() - FCursor.Here())) {
    throw syntaxError(u"Substring bounds error");
  }
  const String taken(FCursor.Here(), static_cast<std::size_t>(N));
  FCursor.SetIndex(FCursor.Index() + taken.size());
  FMetEnd = false;
  return taken;
}

char16_t JSONTokener::nextClean() {
  const char16_t unit = FCursor.NextClean();
  FMetEnd = unit == 0;
  return unit;
}

String JSONTokener::nextString(char16_t Quote) {
  TextBuffer text;
  FCursor.AppendString(text, Quote);
  FMetEnd = false;
  return String(text.View());
}

String JSONTokener::nextTo(StringView Delimiters) {
  const StringView rest = FCursor.Text().substr(FCursor.Index());
  const String stops = String(Delimiters) + u"\n\r";
  const StringView taken = rest.substr(0, rest.find_first_of(stops));
  FCursor.SetIndex(FCursor.Index() + taken.size());
  FMetEnd = false;
  return Trim(taken);
}

std::unique_ptr<TZAbstractObject> JSONTokener::nextValue() {
  FMetEnd = false;
  return Reader(FCursor, FMaxDepth).ReadValue();
}

char16_t JSONTokener::skipTo(char16_t Ch) {
  const std::size_t found = FCursor.Text().find(Ch, FCursor.Index());
  FMetEnd = false;
  if (found == StringView::npos) return 0;
  FCursor.SetIndex(found);
  return Ch;
}

void JSONTokener::skipPast(StringView Text) {
  const std::size_t found = FCursor.Text().find(Text, FCursor.Index());
  FMetEnd = false;
  FCursor.SetIndex(found == StringView::npos ? FCursor.Text().size() : found + Text.size());
}

ParseException JSONTokener::syntaxError(StringView Msg) const {
  return FCursor.Error(Msg);
}

String JSONTokener::toString() const {
  return FCursor.Description();
}

std::int32_t JSONTokener::dehexchar(char16_t Ch) {
  return json_internal::HexValue(Ch);
}

String JSONTokener::unescape(StringView Text) {
  String plain;
  for (std::size_t index = 0; index < Text.size(); ++index) {
    const char16_t unit = Text[index];
    const std::int32_t high = index + 2 < Text.size() ? dehexchar(Text[index + 1]) : -1;
    const std::int32_t low = high >= 0 ? dehexchar(Text[index + 2]) : -1;
    if (unit == u'%' && low >= 0) {
      plain.push_back(static_cast<char16_t>(high * 16 + low));
      index += 2;
    } else {
      plain.push_back(unit == u'+' ? u' ' : unit);
    }
  }
  return plain;
}

namespace json_internal {

AnsiString RestOf(TStream& source) {
  AnsiString bytes;
  constexpr std::size_t kBlock = 65536;
  for (;;) {
    const std::size_t size = bytes.size();
    bytes.resize(size + kBlock);
    const std::int64_t count = source.Read(bytes.data() + size, kBlock);
    bytes.resize(size + static_cast<std::size_t>(count));
    if (count == 0) return bytes;
  }
}

}  // namespace json_internal

TJSONObject::TJSONObject(JSONTokener& Tokener) : TJSONObject() {
  const auto read = Reader(Tokener.FCursor, Tokener.MaxDepth()).ReadObject();
  Swap(static_cast<TJSONObject&>(*read));
}

TJSONObject::TJSONObject(StringView Text) : TJSONObject() {
  Cursor cursor(Text);
  const auto read = Reader(cursor, kMaxJSONDepth).ReadObject();
  Swap(static_cast<TJSONObject&>(*read));
}

TJSONArray::TJSONArray(JSONTokener& Tokener) : TJSONArray() {
  const auto read = Reader(Tokener.FCursor, Tokener.MaxDepth()).ReadArray();
  Swap(static_cast<TJSONArray&>(*read));
}

TJSONArray::TJSONArray(StringView Text) : TJSONArray() {
  Cursor cursor(Text);
  const auto read = Reader(cursor, kMaxJSONDepth).ReadArray();
  Swap(static_cast<TJSONArray&>(*read));
}

}  // namespace zentavo
