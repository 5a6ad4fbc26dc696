#include "zentavo/json/tokener.h"

#include <algorithm>
#include <utility>

#include "zentavo/framework/stream.h"
#include "zentavo/json/array.h"
#include "zentavo/json/object.h"
#include "zentavo/json/reader.h"

namespace zentavo {

using json_internal::Reader;
using json_internal::ReadFirst;

JSONTokener::JSONTokener(String Text) : FText(std::move(Text)) {}

json_internal::Source<char16_t> JSONTokener::Whole() const {
  return json_internal::Source<char16_t>(FText);
}

template <typename Step>
auto JSONTokener::Take(Step read) {
  FMetEnd = false;
  Place here = Here();
  try {
    auto taken = read(Whole(), here);
    MoveTo(here);
    return taken;
  } catch (const ParseException& error) {
    FIndex = static_cast<std::size_t>(error.Position());
    throw;
  }
}

void JSONTokener::back() {
  if (!FMetEnd && FIndex > 0) --FIndex;
  FMetEnd = false;
}

char16_t JSONTokener::next() {
  FMetEnd = !more();
  return FMetEnd ? u'\0' : FText[FIndex++];
}

char16_t JSONTokener::next(char16_t Ch) {
  const char16_t found = next();
  if (found == Ch && !FMetEnd) return found;
  const String seen = FMetEnd ? String() : String(1, found);
  throw syntaxError(u"Expected " + String(1, Ch) + u" and instead saw " + seen + u".");
}

String JSONTokener::next(std::int32_t N) {
  if (N < 0 || std::cmp_greater(N, FText.size() - FIndex)) {
    throw syntaxError(u"Substring bounds error");
  }
  String taken(FText, FIndex, static_cast<std::size_t>(N));
  FIndex += taken.size();
  FMetEnd = false;
  return taken;
}

char16_t JSONTokener::nextClean() {
  Take([](const auto& source, Place& here) { return here = source.Clean(source.SkipMark(here)); });
  return next();
}

String JSONTokener::nextString(char16_t Quote) {
  return Take([this, Quote](const auto& source, Place& here) {
    return Reader<char16_t>(source, FMaxDepth).ReadString(here, Quote);
  });
}

String JSONTokener::nextTo(StringView Delimiters) {
  const StringView rest = StringView(FText).substr(FIndex);
  const String stops = String(Delimiters) + u"\n\r";
  const StringView taken = rest.substr(0, rest.find_first_of(stops));
  FIndex += taken.size();
  FMetEnd = false;
  return Trim(taken);
}

std::unique_ptr<TZAbstractObject> JSONTokener::nextValue() {
  return Take([this](const auto& source, Place& here) {
    return Reader<char16_t>(source, FMaxDepth).ReadValue(here);
  });
}

std::unique_ptr<TZAbstractObject> JSONTokener::TakeContainer(JSONKind kind) {
  return Take([this, kind](const auto& source, Place& here) {
    return Reader<char16_t>(source, FMaxDepth).ReadContainer(here, kind);
  });
}

char16_t JSONTokener::skipTo(char16_t Ch) {
  const std::size_t found = FText.find(Ch, FIndex);
  FMetEnd = false;
  if (found == String::npos) return 0;
  FIndex = found;
  return Ch;
}

void JSONTokener::skipPast(StringView Text) {
  const std::size_t found = FText.find(Text, FIndex);
  FMetEnd = false;
  FIndex = found == String::npos ? FText.size() : found + Text.size();
}

ParseException JSONTokener::syntaxError(StringView Msg) const {
  return FIndex == 0 ? Whole().ErrorBefore(Msg, Here()) : Whole().ErrorAt(Msg, Here() - 1);
}

String JSONTokener::toString() const {
  return json_internal::Description(FText, FIndex);
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
  Swap(static_cast<TJSONObject&>(*Tokener.TakeContainer(JSONKind::kObject)));
}

TJSONObject::TJSONObject(StringView Text) : TJSONObject() {
  Swap(static_cast<TJSONObject&>(*ReadFirst(Text, JSONKind::kObject)));
}

TJSONObject TJSONObject::FromUtf8(std::string_view Text) {
  return std::move(static_cast<TJSONObject&>(*ReadFirst(Text, JSONKind::kObject)));
}

TJSONArray::TJSONArray(JSONTokener& Tokener) : TJSONArray() {
  Swap(static_cast<TJSONArray&>(*Tokener.TakeContainer(JSONKind::kArray)));
}

TJSONArray::TJSONArray(StringView Text) : TJSONArray() {
  Swap(static_cast<TJSONArray&>(*ReadFirst(Text, JSONKind::kArray)));
}

TJSONArray TJSONArray::FromUtf8(std::string_view Text) {
  return std::move(static_cast<TJSONArray&>(*ReadFirst(Text, JSONKind::kArray)));
}

}  // namespace zentavo
