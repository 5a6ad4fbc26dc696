#include "zentavo/foundation/byte_strings.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "zentavo/framework/code_page.h"
#include "zentavo/framework/exception.h"

namespace zentavo {

namespace {

constexpr std::string_view kLineBreak = "\r\n";

[[noreturn]] void RaiseOutOfBounds(StringView what, std::int32_t number) {
  throw Exception(u"List " + String(what) + u" out of bounds (" + FromUtf8(std::to_string(number)) +
                  u")");
}

char UpperByte(char byte) {
  return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 32) : byte;
}

bool HasName(std::string_view line, std::string_view name) {
  return line.size() > name.size() && line[name.size()] == '=' &&
         std::equal(name.begin(), name.end(), line.begin(),
                    [](char a, char b) { return UpperByte(a) == UpperByte(b); });
}

// Takes the first line with its break off `rest`.
std::string_view TakeLine(std::string_view& rest) {
  const std::size_t end = std::min(rest.find_first_of(kLineBreak), rest.size());
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(end);
  rest.remove_prefix(rest.starts_with(kLineBreak) ? 2 : std::min<std::size_t>(rest.size(), 1));
  return line;
}

}  // namespace

void TByteStrings::SetCapacity(std::int32_t N) {
  if (N < FCount) RaiseOutOfBounds(u"capacity", N);
  if (N == FCapacity) return;
  FList.resize(static_cast<std::size_t>(N));
  FCapacity = N;
}

std::int32_t TByteStrings::Add(AnsiString S) {
  Insert(FCount, std::move(S));
  return FCount - 1;
}

// The slot at the end of the list moves to the place of the new string.
void TByteStrings::Insert(std::int32_t Index, AnsiString S) {
  CheckIndex(Index, FCount + 1);
  if (FCount == FCapacity) Grow();
  const auto begin = FList.begin();
  std::rotate(begin + Index, begin + FCount, begin + FCount + 1);
  ++FCount;
  Put(Index, std::move(S));
}

void TByteStrings::Delete(std::int32_t Index) {
  CheckIndex(Index, FCount);
  const auto begin = FList.begin();
  std::rotate(begin + Index, begin + Index + 1, begin + FCount);
  --FCount;
}

void TByteStrings::Clear() {
  FCount = 0;
}

void TByteStrings::Put(std::int32_t Index, AnsiString S) {
  FList[static_cast<std::size_t>(Index)] = std::move(S);
}

void TByteStrings::Assign(const TByteStrings& Source) {
  if (this == &Source) return;
  Clear();
  if (FCapacity < Source.FCount) SetCapacity(Source.FCount);
  std::copy_n(Source.FList.begin(), Source.FCount, FList.begin());
  FCount = Source.FCount;
}

AnsiString TByteStrings::GetText() const {
  const std::span lines(FList.data(), static_cast<std::size_t>(FCount));
  std::size_t size = 0;
  for (const AnsiString& line : lines) size += line.size() + kLineBreak.size();
  AnsiString text;
  text.reserve(size);
  for (const AnsiString& line : lines) text.append(line).append(kLineBreak);
  return text;
}

void TByteStrings::SetText(std::string_view S) {
  const AnsiString text(S);  // the list's own strings are about to be written over
  Clear();
  for (std::string_view rest = text; !rest.empty();) {
    Add(ToSystemAnsi(FromSystemAnsi(TakeLine(rest))));
  }
}

std::int32_t TByteStrings::IndexOfName(std::string_view Name) const {
  const auto end = FList.begin() + FCount;
  const auto place =
      std::find_if(FList.begin(), end, [&](const AnsiString& line) { return HasName(line, Name); });
  return place == end ? -1 : static_cast<std::int32_t>(place - FList.begin());
}

AnsiString TByteStrings::GetValue(std::string_view Name) const {
  const std::int32_t index = IndexOfName(Name);
  return index < 0 ? AnsiString() : Get(index).substr(Name.size() + 1);
}

void TByteStrings::SetValue(std::string_view Name, std::string_view Value) {
  AnsiString line = AnsiString(Name).append("=").append(Value);
  const std::int32_t index = IndexOfName(Name);
  if (index < 0) {
    Add(std::move(line));
  } else {
    Put(index, std::move(line));
  }
}

void TByteStrings::CheckIndex(std::int32_t Index, std::int32_t End) {
  if (Index < 0 || Index >= End) RaiseOutOfBounds(u"index", Index);
}

void TByteStrings::Grow() {
  const std::int32_t delta = FCapacity > 64 ? FCapacity / 4 : FCapacity > 8 ? 16 : 4;
  SetCapacity(FCapacity + delta);
}

}  // namespace zentavo
