// A text that grows by appending, with spare room so that few appends move it.
//
//   TStrBuilder builder(u"", 4096);
//   builder.Add(u"Total: ").AddInteger(42).AddLine(u" items");
//   builder.GetData();  // "Total: 42 items", CR LF
//
// Room grows by a quarter of the capacity, at least by the step. Only Clear gives it back. A
// builder is used by one thread at a time; it holds at most 2^31 - 1 units and raises EZentavoError
// "Text too long" beyond.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include "zentavo/framework/format.h"
#include "zentavo/framework/text.h"

namespace zentavo {

// Movable, not copyable; a moved-from builder is empty.
class ZENTAVO_API TStrBuilder {
 public:
  // The text to begin with, which is all of the first capacity, and the least growth in units.
  explicit TStrBuilder(StringView data = {}, std::int32_t step = 4096);
  TStrBuilder(TStrBuilder&& other) noexcept;
  TStrBuilder& operator=(TStrBuilder&& other) noexcept;
  ~TStrBuilder();

  // Append and return the builder. What is appended must not lie in the builder's own memory.
  TStrBuilder& AddChars(const char16_t* Buffer, std::int32_t Count);  // nothing for a count below 1
  // `Count` units of `S` from position `Start`, which must lie in `S`.
  TStrBuilder& AddPart(StringView S, std::int32_t Start, std::int32_t Count);
  TStrBuilder& Add(StringView S) {
    Append(S.data(), S.size());
    return *this;
  }
  TStrBuilder& Add(char16_t Ch) {
    if (FLength == FCapacity) CheckLength(1);
    FDataString[static_cast<std::size_t>(FLength++)] = Ch;
    return *this;
  }
  TStrBuilder& AddInteger(std::int64_t Value);
  TStrBuilder& AddLine(StringView S);  // S, then CR LF
  // Nothing for an empty `S`; otherwise CR LF first, unless the builder is empty, then `S`.
  TStrBuilder& LineAdd(StringView S);
  TStrBuilder& AddFmt(StringView Pattern, std::initializer_list<FormatArg> Args);
  TStrBuilder& AddLineFmt(StringView Pattern, std::initializer_list<FormatArg> Args);

  // Puts `S` in the place of `Count` units from position `Index`. Works strictly inside the
  // content: a range that reaches the last unit, and an insertion behind it, change nothing, which
  // callers rely on.
  void Replace(std::int32_t Index, std::int32_t Count, StringView S);
  void Insert(std::int32_t Index, StringView S) { Replace(Index, 0, S); }

  // Makes room for `N` more units.
  void CheckLength(std::int64_t N);
  String GetData() const { return String(View()); }
  // The content; valid until the builder changes.
  StringView View() const { return {FDataString.get(), static_cast<std::size_t>(FLength)}; }
  void SetValue(StringView S);                // keeps the room
  char16_t Get(std::int32_t Index) const;     // unit 0 outside the content
  void Put(std::int32_t Index, char16_t Ch);  // nothing outside the content
  char16_t LastChar() const { return Get(FLength); }
  void SetLast(char16_t Ch) { Put(FLength, Ch); }
  void DeleteLast(std::int32_t Count);  // empties a builder that is shorter
  void Clear();                         // gives the room back
  std::int32_t Size() const { return FLength; }
  std::int32_t Capacity() const { return FCapacity; }
  // The first unit; null when empty.
  char16_t* GetMemoryPtr() { return FLength == 0 ? nullptr : FDataString.get(); }

  // Writes the content in the system code page, one byte for each of its units: where characters
  // need more bytes the text is cut, where fewer, filled with zeros. An empty builder leaves an
  // empty file. Raises what WriteToFile raises.
  void WriteToFile(StringView FileName) const;

 private:
  struct FreeMemory {
    void operator()(char16_t* memory) const;
  };

  void Append(const char16_t* units, std::size_t count) {
    if (count > Room()) CheckLength(static_cast<std::int64_t>(count));
    std::char_traits<char16_t>::copy(FDataString.get() + FLength, units, count);
    FLength += static_cast<std::int32_t>(count);
  }
  std::size_t Room() const { return static_cast<std::size_t>(FCapacity - FLength); }
  void SetCapacity(std::int64_t capacity);

  std::unique_ptr<char16_t[], FreeMemory> FDataString;  // FCapacity units
  std::int32_t FLength = 0;
  std::int32_t FCapacity = 0;
  std::int32_t FStep;
};

}  // namespace zentavo
