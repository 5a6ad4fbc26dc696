// A light list of 8-bit strings in the system code page, with name=value access.
//
//   TByteStrings list;
//   list.SetText("Host=db1\r\nPort=5432\r\n");
//   list.GetValue("PORT");          // "5432"
//   list.SetValue("Port", "5433");  // in its place
//
// A list is used by one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo {

// Neither copied (see Assign) nor moved. A text handed in may be one of the list's own.
class ZENTAVO_API TByteStrings {
 public:
  TByteStrings() = default;
  TByteStrings(const TByteStrings&) = delete;
  TByteStrings& operator=(const TByteStrings&) = delete;
  ~TByteStrings() = default;

  std::int32_t Count() const { return FCount; }
  std::int32_t Capacity() const { return FCapacity; }
  // Raises Exception "List capacity out of bounds (%d)" below Count.
  void SetCapacity(std::int32_t N);

  std::int32_t Add(AnsiString S);  // returns its index
  // `Index` is 0 to Count for Insert, 0 to Count - 1 for Delete; raise Exception "List index out of
  // bounds (%d)".
  void Insert(std::int32_t Index, AnsiString S);
  void Delete(std::int32_t Index);
  void Clear();  // keeps the capacity

  // Not checked: `Index` must be 0 to Count - 1.
  const AnsiString& Get(std::int32_t Index) const { return FList[static_cast<std::size_t>(Index)]; }
  void Put(std::int32_t Index, AnsiString S);
  const AnsiString& operator[](std::int32_t Index) const { return Get(Index); }

  void Assign(const TByteStrings& Source);

  // Every string followed by CR LF, the last one too.
  AnsiString GetText() const;
  // Replaces the list by the lines of `S`, which end at CR LF, CR or LF; a break at the very end
  // adds no empty line. Bytes that are not text of the system code page change as they do on the
  // way to UTF-16 and back.
  void SetText(std::string_view S);

  // The first string that is `Name` (ASCII letters in either case) followed by "="; -1 when there
  // is none.
  std::int32_t IndexOfName(std::string_view Name) const;
  // What follows the "=" of that string; empty when there is none.
  AnsiString GetValue(std::string_view Name) const;
  // Replaces that string by Name=Value, or adds it. The empty value deletes nothing.
  void SetValue(std::string_view Name, std::string_view Value);

 private:
  static void CheckIndex(std::int32_t Index, std::int32_t End);
  void Grow();

  std::vector<AnsiString> FList;  // its size is the capacity
  std::int32_t FCapacity = 0;
  std::int32_t FCount = 0;
};

}  // namespace zentavo
