// Whole files, and bytes between texts, memory streams, variants and fields.
//
// A file that cannot be opened or created raises EFOpenError or EFCreateError, one that cannot be
// read or written EReadError or EWriteError. All functions may be called from any thread.
#pragma once

#include <cstdint>
#include <memory>

#include "zentavo/framework/field.h"
#include "zentavo/framework/stream.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

// Read a whole file, while others may read and write it. `Flag` has no effect.
ZENTAVO_API AnsiString ReadAllTextAnsi(StringView FileName, bool Flag = false);  // raw bytes
ZENTAVO_API String ReadAllText(StringView FileName, bool Flag = false);  // of the system code page
ZENTAVO_API std::unique_ptr<TStringList> ReadAllLines(StringView FileName, bool Flag = false);
ZENTAVO_API std::unique_ptr<TMemoryStream> CreateMemoryStream(StringView FileName,
                                                              bool Flag = false);

// Writes `Count` bytes behind the content of an existing file (`Append`), else into a new or
// emptied one. A count below 1 writes nothing, which leaves a new or emptied file empty.
ZENTAVO_API void WriteToFile(StringView FileName, const void* Buffer, std::int32_t Count,
                             bool Append);
// The same with a text in the system code page. An empty text does not touch the file.
ZENTAVO_API void WriteText(StringView FileName, StringView Text, bool Append);
// Appends each line with a line break behind it.
ZENTAVO_API void AppendLines(StringView FileName, const TStringList& Lines);

ZENTAVO_API AnsiString MemoryToString(const TMemoryStream& Stream);             // all of it
ZENTAVO_API std::unique_ptr<TMemoryStream> StringToMemory(std::string_view S);  // at position 0
// A byte array of the whole memory; Null when the stream is empty.
ZENTAVO_API Variant MemoryToVariant(const TMemoryStream& Stream);

// The field's value as 8-bit text of the system code page, through the field's own accessor.
ZENTAVO_API AnsiString GetAsAnsiString(const TField& Field);
ZENTAVO_API void SetAsAnsiString(TField& Field, std::string_view Value);

}  // namespace zentavo
