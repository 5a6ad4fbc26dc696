// What every ini file can do on top of reading and writing its texts: typed values, tests, listing.
//
// A file is used by one thread at a time. Reading never raises for what is missing or does not
// convert: the default comes back.
#pragma once

#include <cstdint>

#include "zentavo/framework/date_time.h"
#include "zentavo/framework/object.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class TStream;
class TStringList;

// Parts the names of sections that lie within others: "Colours\Dark" lies within "Colours".
inline constexpr char16_t kSectionNameSeparator = u'\\';

// Neither copied nor moved.
class ZENTAVO_API TXCustomIniFile : public TObject {
 public:
  explicit TXCustomIniFile(StringView FileName);
  TXCustomIniFile(const TXCustomIniFile&) = delete;
  TXCustomIniFile& operator=(const TXCustomIniFile&) = delete;

  virtual String ReadString(StringView Section, StringView Ident, StringView Default) const = 0;
  virtual void WriteString(StringView Section, StringView Ident, StringView Value) = 0;
  // The names in a section, and the names of all sections, in order. Every list that is filled here
  // is emptied first.
  virtual void ReadSection(StringView Section, TStringList& Strings) const = 0;
  virtual void ReadSections(TStringList& Strings) const = 0;
  // The lines of a section as they are.
  virtual void ReadSectionValues(StringView Section, TStringList& Strings) const = 0;
  virtual void EraseSection(StringView Section) = 0;
  virtual void DeleteKey(StringView Section, StringView Ident) = 0;
  // Writes the file.
  virtual void UpdateFile() = 0;

  // False for a section that has no lines, which callers rely on.
  bool SectionExists(StringView Section) const;
  bool ValueExists(StringView Section, StringView Ident) const;

  // Decimal, or hexadecimal behind "0x" or '$'.
  std::int32_t ReadInteger(StringView Section, StringView Ident, std::int32_t Default) const;
  void WriteInteger(StringView Section, StringView Ident, std::int32_t Value);
  // Any integer but 0 is true. Written as 1 and 0.
  bool ReadBool(StringView Section, StringView Ident, bool Default) const;
  void WriteBool(StringView Section, StringView Ident, bool Value);

  // These read and write by the process's format settings.
  double ReadFloat(StringView Section, StringView Name, double Default) const;
  void WriteFloat(StringView Section, StringView Name, double Value);
  TDateTime ReadDate(StringView Section, StringView Name, TDateTime Default) const;
  void WriteDate(StringView Section, StringView Name, TDateTime Value);
  TDateTime ReadTime(StringView Section, StringView Name, TDateTime Default) const;
  void WriteTime(StringView Section, StringView Name, TDateTime Value);
  TDateTime ReadDateTime(StringView Section, StringView Name, TDateTime Default) const;
  void WriteDateTime(StringView Section, StringView Name, TDateTime Value);

  // Bytes as hexadecimal text, two digits each. Reading writes them at the stream's position and
  // returns how many there are; the first pair that is no number ends them. Writing takes the
  // stream from its position to its end.
  std::int32_t ReadBinaryStream(StringView Section, StringView Name, TStream& Value) const;
  void WriteBinaryStream(StringView Section, StringView Name, TStream& Value);

  // The sections that lie within `Section`, at any depth, by their full names. The empty `Section`
  // gives every section.
  void ReadSections(StringView Section, TStringList& Strings) const;
  // The same by what follows `Section` in their names, and those right below it alone unless
  // `Recurse`.
  void ReadSubSections(StringView Section, TStringList& Strings, bool Recurse = false) const;

  const String& FileName() const { return FFileName; }

 protected:
  void InternalReadSections(StringView Section, TStringList& Strings, bool SubSectionNamesOnly,
                            bool Recurse) const;
  void SetFileName(StringView FileName) { FFileName = FileName; }

 private:
  String FFileName;
};

}  // namespace zentavo
