// An ini file held in memory: read once, answered from memory, written back as a whole.
//
//   TXMemIniFile ini(u"office.ini");
//   ini.ReadString(u"Printer", u"Name", u"none");
//   ini.WriteInteger(u"Printer", u"Copies", 2);
//   ini.UpdateFile();
//
// The file is a sequence of sections, each a line "[name]" and the lines that follow it; lines
// "name=value" lose the blanks around both parts, others are kept as they are without the blanks
// around them. Blank lines, lines that begin with ';' and lines before the first section are
// dropped, and so are gone from the file once it is written. Of sections, and of names in a
// section, that occur twice, look-ups find the first. Names ignore case unless asked otherwise.
//
// A mark at the start of the file tells its encoding; without one it is the encoding given to the
// constructor, else UTF-8, or the system code page where the bytes are not UTF-8. Reading is linear
// in the file's length, whatever it holds.
//
// Texts are stored as they come: a value that holds a line break, or a name that holds '=', reads
// back as something else once it has been written to the file.
#pragma once

#include <optional>
#include <string_view>

#include "zentavo/config/custom_ini_file.h"
#include "zentavo/config/hashed_string_list.h"
#include "zentavo/framework/text_encoding.h"

namespace zentavo {

class ZENTAVO_API TXMemIniFile : public TXCustomIniFile {
 public:
  // Reads the file; one that does not exist counts as empty. Raises EFOpenError or EReadError when
  // it cannot be read.
  explicit TXMemIniFile(StringView FileName, std::optional<TEncoding> Encoding = std::nullopt,
                        bool CaseSensitive = false);
  // Writes the file when AutoSave is on and something changed. A failure of that is lost; call
  // UpdateFile to hear of it.
  ~TXMemIniFile() override;

  using TXCustomIniFile::ReadSections;

  String ReadString(StringView Section, StringView Ident, StringView Default) const override;
  // Replaces the value in its line, else appends a line to the section, else a section to the file.
  void WriteString(StringView Section, StringView Ident, StringView Value) override;
  void ReadSection(StringView Section, TStringList& Strings) const override;
  void ReadSections(TStringList& Strings) const override;
  void ReadSectionValues(StringView Section, TStringList& Strings) const override;
  void EraseSection(StringView Section) override;
  void DeleteKey(StringView Section, StringView Ident) override;
  // Replaces the file atomically, its permissions kept, through a symbolic link where the name is
  // one. Written in Encoding, else in the encoding and with the mark that were read; a new file is
  // UTF-8 without a mark. UTF-16 always has its mark, UTF-8 keeps one that was read.
  //
  // Raises EFCreateError or EWriteError and leaves the file as it was; so it does, with EWriteError
  // "'%s' is not valid text in its encoding", when the file had bytes that could not be read.
  void UpdateFile() override;

  // Appends an empty section and returns its lines, which belong to this object. Another section of
  // that name stays in front of it.
  TXHashedStringList& AddSection(StringView Section);
  void Clear();
  // Fills `List` with the text form: each section's header and lines, and an empty line behind.
  void GetStrings(TStringList& List) const;
  // Replaces everything by what the lines of `List` say.
  void SetStrings(const TStringList& List);
  // Reads the file again. Raises what the constructor raises, and then changes nothing.
  void LoadValues();
  // The same from the bytes of a file that the caller has, and the bytes that UpdateFile would
  // write.
  void LoadBytes(std::string_view Bytes);
  AnsiString SaveBytes() const;
  // Goes on under another name; `Reload` reads that file, else its content becomes the content here
  // with UpdateFile.
  void Rename(StringView FileName, bool Reload);

  bool CaseSensitive() const { return FSections.CaseSensitive(); }
  void SetCaseSensitive(bool Value);
  // What the file is to be written in; nothing for what it was read in.
  std::optional<TEncoding> Encoding() const { return FEncoding; }
  void SetEncoding(std::optional<TEncoding> Value) { FEncoding = Value; }
  // Whether the file may differ from what is here. Clear alone does not count as a change.
  bool Modified() const { return FModified; }
  void SetModified(bool Value) { FModified = Value; }
  bool AutoSave() const { return FAutoSave; }
  void SetAutoSave(bool Value) { FAutoSave = Value; }

 private:
  TXHashedStringList* FindSection(StringView Section) const;
  TXHashedStringList& Lines(std::int32_t index) const;
  void RequireReadable() const;
  // Hands every line of the text form to `emit`.
  template <typename Emit>
  void EachLine(Emit emit) const;
  // The text form with the system's line breaks.
  String FileText() const;

  TXHashedStringList FSections;  // the names; each one's lines are its object
  std::optional<TEncoding> FEncoding;
  bool FModified = false;
  bool FAutoSave = false;

  TEncoding read_encoding_ = TEncoding::Utf8();
  bool read_mark_ = false;
  String line_;                         // what WriteString puts together, kept for its memory
  std::optional<String> damaged_file_;  // the file that was read with invalid bytes
};

}  // namespace zentavo
