#include "zentavo/config/custom_ini_file.h"

#include <limits>
#include <optional>
#include <vector>

#include "zentavo/config/update_scope.h"
#include "zentavo/framework/format_settings.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/stream.h"
#include "zentavo/framework/string_list.h"

namespace zentavo {

namespace {

std::optional<unsigned> HexDigit(char16_t unit) {
  if (IsDigit(unit)) return unit - u'0';
  const char16_t upper = UpCase(unit);
  if (upper >= u'A' && upper <= u'F') return upper - u'A' + 10u;
  return std::nullopt;
}

std::vector<std::byte> BytesOfHex(StringView text) {
  std::vector<std::byte> bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    const std::optional<unsigned> high = HexDigit(text[i]);
    const std::optional<unsigned> low = HexDigit(text[i + 1]);
    if (!high || !low) break;
    bytes.push_back(static_cast<std::byte>(*high << 4 | *low));
  }
  return bytes;
}

void AppendHex(String& text, std::byte byte) {
  constexpr StringView kDigits = u"0123456789ABCDEF";
  text += kDigits[std::to_integer<std::size_t>(byte >> 4)];
  text += kDigits[std::to_integer<std::size_t>(byte & std::byte{0xF})];
}

// What follows the prefix `parent` in `name`; nothing when `name` does not lie within.
std::optional<StringView> NameWithin(StringView parent, StringView name) {
  if (name.size() <= parent.size() || !SameText(name.substr(0, parent.size()), parent)) {
    return std::nullopt;
  }
  return name.substr(parent.size());
}

}  // namespace

TXCustomIniFile::TXCustomIniFile(StringView FileName) : FFileName(FileName) {}

bool TXCustomIniFile::SectionExists(StringView Section) const {
  TStringList names;
  ReadSection(Section, names);
  return names.Count() > 0;
}

bool TXCustomIniFile::ValueExists(StringView Section, StringView Ident) const {
  TStringList names;
  ReadSection(Section, names);
  return names.IndexOf(Ident) >= 0;
}

std::int32_t TXCustomIniFile::ReadInteger(StringView Section, StringView Ident,
                                          std::int32_t Default) const {
  String text = ReadString(Section, Ident, {});
  if (text.size() > 2 && text[0] == u'0' && UpCase(text[1]) == u'X') text.replace(0, 2, u"$");
  return StrToIntDef(text, Default);
}

void TXCustomIniFile::WriteInteger(StringView Section, StringView Ident, std::int32_t Value) {
  WriteString(Section, Ident, IntToStr(Value));
}

bool TXCustomIniFile::ReadBool(StringView Section, StringView Ident, bool Default) const {
  return ReadInteger(Section, Ident, Default ? 1 : 0) != 0;
}

void TXCustomIniFile::WriteBool(StringView Section, StringView Ident, bool Value) {
  WriteString(Section, Ident, Value ? u"1" : u"0");
}

double TXCustomIniFile::ReadFloat(StringView Section, StringView Name, double Default) const {
  return TryStrToFloat(ReadString(Section, Name, {}), ProcessFormatSettings().DecimalSeparator)
      .value_or(Default);
}

void TXCustomIniFile::WriteFloat(StringView Section, StringView Name, double Value) {
  WriteString(Section, Name, FloatToStr(Value, ProcessFormatSettings()));
}

TDateTime TXCustomIniFile::ReadDate(StringView Section, StringView Name, TDateTime Default) const {
  return TryStrToDate(ReadString(Section, Name, {}), ProcessFormatSettings()).value_or(Default);
}

void TXCustomIniFile::WriteDate(StringView Section, StringView Name, TDateTime Value) {
  WriteString(Section, Name, DateToStr(Value, ProcessFormatSettings()));
}

TDateTime TXCustomIniFile::ReadTime(StringView Section, StringView Name, TDateTime Default) const {
  return TryStrToTime(ReadString(Section, Name, {}), ProcessFormatSettings()).value_or(Default);
}

void TXCustomIniFile::WriteTime(StringView Section, StringView Name, TDateTime Value) {
  WriteString(Section, Name, TimeToStr(Value, ProcessFormatSettings()));
}

TDateTime TXCustomIniFile::ReadDateTime(StringView Section, StringView Name,
                                        TDateTime Default) const {
  return TryStrToDateTime(ReadString(Section, Name, {}), ProcessFormatSettings()).value_or(Default);
}

void TXCustomIniFile::WriteDateTime(StringView Section, StringView Name, TDateTime Value) {
  WriteString(Section, Name, DateTimeToStr(Value, ProcessFormatSettings()));
}

std::int32_t TXCustomIniFile::ReadBinaryStream(StringView Section, StringView Name,
                                               TStream& Value) const {
  const std::vector<std::byte> bytes = BytesOfHex(ReadString(Section, Name, {}));
  Value.WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  return static_cast<std::int32_t>(bytes.size());
}

void TXCustomIniFile::WriteBinaryStream(StringView Section, StringView Name, TStream& Value) {
  TMemoryStream bytes;
  const std::int64_t count = Value.Size() - Value.Position();
  if (count > 0) bytes.CopyFrom(Value, count);
  String text;
  text.reserve(bytes.Bytes().size() * 2);
  for (const std::byte byte : bytes.Bytes()) AppendHex(text, byte);
  WriteString(Section, Name, text);
}

void TXCustomIniFile::ReadSections(StringView Section, TStringList& Strings) const {
  InternalReadSections(Section, Strings, false, true);
}

void TXCustomIniFile::ReadSubSections(StringView Section, TStringList& Strings,
                                      bool Recurse) const {
  InternalReadSections(Section, Strings, true, Recurse);
}

void TXCustomIniFile::InternalReadSections(StringView Section, TStringList& Strings,
                                           bool SubSectionNamesOnly, bool Recurse) const {
  TStringList all;
  ReadSections(all);
  const String parent =
      Section.empty() ? String() : String(Section).append(1, kSectionNameSeparator);
  const UpdateScope update(Strings);
  Strings.Clear();
  for (std::int32_t i = 0; i < all.Count(); ++i) {
    const std::optional<StringView> rest = NameWithin(parent, all[i]);
    const bool deeper = rest && rest->find(kSectionNameSeparator) != StringView::npos;
    if (!Section.empty() && (!rest || (deeper && !Recurse))) continue;
    Strings.Add(SubSectionNamesOnly && rest ? *rest : StringView(all[i]));
  }
}

}  // namespace zentavo
