#include "zentavo/config/mem_ini_file.h"

#include <memory>
#include <span>
#include <utility>

#include "zentavo/config/ini_reader.h"
#include "zentavo/config/update_scope.h"
#include "zentavo/framework/atomic_file.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/file_names.h"

namespace zentavo {

TXMemIniFile::TXMemIniFile(StringView FileName, std::optional<TEncoding> Encoding,
                           bool CaseSensitive)
    : TXCustomIniFile(FileName), FEncoding(Encoding) {
  FSections.SetOwnsObjects(true);
  FSections.SetCaseSensitive(CaseSensitive);
  LoadValues();
}

TXMemIniFile::~TXMemIniFile() {
  if (!FAutoSave || !FModified) return;
  try {
    TXMemIniFile::UpdateFile();
  } catch (const std::exception&) {
    // A destructor has nobody to tell.
  }
}

TXHashedStringList& TXMemIniFile::Lines(std::int32_t index) const {
  return static_cast<TXHashedStringList&>(*FSections.Objects(index));
}

TXHashedStringList* TXMemIniFile::FindSection(StringView Section) const {
  const std::int32_t index = FSections.IndexOf(Section);
  return index < 0 ? nullptr : &Lines(index);
}

String TXMemIniFile::ReadString(StringView Section, StringView Ident, StringView Default) const {
  const TXHashedStringList* lines = FindSection(Section);
  StringView line;
  const bool found = lines != nullptr && lines->FindLine(Ident, line);
  return String(found ? line.substr(Ident.size() + 1) : Default);
}

void TXMemIniFile::WriteString(StringView Section, StringView Ident, StringView Value) {
  TXHashedStringList* found = FindSection(Section);
  TXHashedStringList& lines = found != nullptr ? *found : AddSection(Section);
  line_.assign(Ident).append(1, u'=').append(Value);
  const std::int32_t index = lines.IndexOfName(Ident);
  if (index < 0) {
    lines.Add(line_);
  } else {
    lines.SetString(index, line_);
  }
  FModified = true;
}

void TXMemIniFile::ReadSection(StringView Section, TStringList& Strings) const {
  const UpdateScope update(Strings);
  Strings.Clear();
  if (const TXHashedStringList* lines = FindSection(Section)) {
    for (std::int32_t i = 0; i < lines->Count(); ++i) {
      const StringView line = lines->Strings(i);
      Strings.Add(line.substr(0, line.find(u'=')));
    }
  }
}

void TXMemIniFile::ReadSections(TStringList& Strings) const {
  const UpdateScope update(Strings);
  Strings.Clear();
  for (std::int32_t i = 0; i < FSections.Count(); ++i) Strings.Add(FSections[i]);
}

void TXMemIniFile::ReadSectionValues(StringView Section, TStringList& Strings) const {
  const UpdateScope update(Strings);
  Strings.Clear();
  if (const TXHashedStringList* lines = FindSection(Section)) Strings.AddStrings(*lines);
}

void TXMemIniFile::EraseSection(StringView Section) {
  const std::int32_t index = FSections.IndexOf(Section);
  if (index < 0) return;
  FSections.Delete(index);
  FModified = true;
}

void TXMemIniFile::DeleteKey(StringView Section, StringView Ident) {
  TXHashedStringList* lines = FindSection(Section);
  const std::int32_t index = lines == nullptr ? -1 : lines->IndexOfName(Ident);
  if (index < 0) return;
  lines->Delete(index);
  FModified = true;
}

TXHashedStringList& TXMemIniFile::AddSection(StringView Section) {
  auto lines = std::make_unique<TXHashedStringList>();
  lines->SetCaseSensitive(CaseSensitive());
  TXHashedStringList& added = *lines;
  FSections.AddObject(Section, std::move(lines));
  return added;
}

void TXMemIniFile::Clear() {
  FSections.Clear();
}

template <typename Emit>
void TXMemIniFile::EachLine(Emit emit) const {
  String header;
  for (std::int32_t i = 0; i < FSections.Count(); ++i) {
    emit(header.assign(1, u'[').append(FSections[i]).append(1, u']'));
    const TXHashedStringList& lines = Lines(i);
    for (std::int32_t line = 0; line < lines.Count(); ++line) emit(lines[line]);
    emit(StringView());
  }
}

void TXMemIniFile::GetStrings(TStringList& List) const {
  const UpdateScope update(List);
  List.Clear();
  EachLine([&List](StringView line) { List.Add(line); });
}

void TXMemIniFile::SetStrings(const TStringList& List) {
  Clear();
  IniReader reader([this](StringView name) -> TStringList& { return AddSection(name); });
  for (std::int32_t i = 0; i < List.Count(); ++i) reader.ReadLine(List[i]);
  FModified = true;
}

void TXMemIniFile::LoadValues() {
  AnsiString bytes;
  if (FileExists(FileName())) bytes = LoadFileWhole(FileName());
  LoadBytes(bytes);
}

void TXMemIniFile::LoadBytes(std::string_view bytes) {
  const std::optional<TEncoding> marked = TEncoding::FromMark(bytes);
  if (marked) bytes.remove_prefix(marked->Mark().size());
  TEncoding encoding = marked.value_or(FEncoding.value_or(TEncoding::Utf8()));
  String text;
  bool valid = encoding.Decode(bytes, text);
  const bool guessed = !marked && !FEncoding;
  if (!valid && guessed && TEncoding::System().CodePage() != encoding.CodePage()) {
    encoding = TEncoding(TEncoding::System().CodePage());
    text.clear();
    valid = encoding.Decode(bytes, text);
  }
  read_encoding_ = encoding;
  read_mark_ = marked.has_value();
  damaged_file_ = valid ? std::nullopt : std::optional(FileName());
  Clear();
  IniReader reader([this](StringView name) -> TStringList& { return AddSection(name); });
  reader.ReadText(text);
  FModified = false;
}

String TXMemIniFile::FileText() const {
  const StringView line_break = PlatformLineBreak();
  std::size_t size = 0;
  EachLine([&](StringView line) { size += line.size() + line_break.size(); });
  String text;
  text.reserve(size);
  EachLine([&](StringView line) { text.append(line).append(line_break); });
  return text;
}

void TXMemIniFile::RequireReadable() const {
  if (damaged_file_ != FileName()) return;
  throw EWriteError(u"'" + FileName() + u"' is not valid text in its encoding");
}

AnsiString TXMemIniFile::SaveBytes() const {
  RequireReadable();
  const TEncoding encoding = FEncoding.value_or(read_encoding_);
  const bool is_utf8 = encoding == TEncoding::Utf8();
  const bool marked = is_utf8 ? read_mark_ && read_encoding_ == encoding : true;
  AnsiString bytes = encoding.Encode(FileText());
  if (marked) bytes.insert(0, encoding.Mark());
  return bytes;
}

void TXMemIniFile::UpdateFile() {
  const AnsiString bytes = SaveBytes();
  SaveFileAtomically(FileName(), std::as_bytes(std::span(bytes)));
  FModified = false;
}

void TXMemIniFile::Rename(StringView FileName, bool Reload) {
  FModified = FModified || FileName != this->FileName();
  SetFileName(FileName);
  if (Reload) LoadValues();
}

void TXMemIniFile::SetCaseSensitive(bool Value) {
  FSections.SetCaseSensitive(Value);
  for (std::int32_t i = 0; i < FSections.Count(); ++i) Lines(i).SetCaseSensitive(Value);
}

}  // namespace zentavo
