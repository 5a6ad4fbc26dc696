#include "zentavo/settings/settings_file.h"

#include <span>

#include "zentavo/config/mem_ini_file.h"
#include "zentavo/framework/atomic_file.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/file_names.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/stream.h"
#include "zentavo/framework/string_list.h"
#include "zentavo/platform/directories.h"
#include "zentavo/platform/lock_file.h"
#include "zentavo/platform/user_settings.h"

namespace zentavo {

namespace {

constexpr StringView kRootSection = u"\\";  // no section has that name
constexpr std::size_t kEscapeDigits = 4;

// Escapes -----------------------------------------------------------------------------------------

std::optional<char16_t> EscapedUnit(StringView text) {
  if (text.size() <= kEscapeDigits || text.front() != u'%') return std::nullopt;
  unsigned unit = 0;
  for (const char16_t digit : text.substr(1, kEscapeDigits)) {
    const StringView digits = u"0123456789ABCDEF";
    const std::size_t value = digits.find(digit);
    if (value == digits.npos) return std::nullopt;
    unit = unit * 16 + static_cast<unsigned>(value);
  }
  return static_cast<char16_t>(unit);
}

enum class Place { kSection, kName, kValue };

bool NeedsEscape(StringView text, std::size_t index, Place place) {
  const char16_t unit = text[index];
  const bool at_end = index == 0 || index + 1 == text.size();
  if (unit < 0x20 || (unit == u' ' && at_end)) return true;
  if (unit == u'%') return EscapedUnit(text.substr(index)).has_value();
  if (place == Place::kName && unit == u'=') return true;
  return place == Place::kName && index == 0 && (unit == u';' || unit == u'[');
}

// Whether a surrogate stands without its other half at `index`.
bool IsLone(StringView text, std::size_t index) {
  if ((text[index] & 0xF800) != 0xD800) return false;
  const std::size_t first = (text[index] & 0x0400) == 0 ? index : index - 1;
  return index < first || first + 1 >= text.size() || HasLoneSurrogate(text.substr(first, 2));
}

String Escaped(StringView text, Place place) {
  String escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (NeedsEscape(text, i, place) || IsLone(text, i)) {
      escaped += u'%' + IntToHex(text[i], kEscapeDigits);
    } else {
      escaped += text[i];
    }
  }
  return escaped;
}

String Unescaped(StringView text) {
  String plain;
  while (!text.empty()) {
    const std::optional<char16_t> unit = EscapedUnit(text);
    plain += unit.value_or(text.front());
    text.remove_prefix(unit ? kEscapeDigits + 1 : 1);
  }
  return plain;
}

// Files -------------------------------------------------------------------------------------------

AnsiString ReadBytes(StringView file_name) {
  TMemoryStream stream;
  if (FileExists(file_name)) stream.LoadFromFile(file_name);
  return {reinterpret_cast<const char*>(stream.Memory()), static_cast<std::size_t>(stream.Size())};
}

std::int32_t FilledLines(const TStringList& lines) {
  std::int32_t count = 0;
  for (std::int32_t i = 0; i < lines.Count(); ++i) count += !TrimView(lines[i]).empty();
  return count;
}

// Fills `ini` and returns whether it holds all that stands in `bytes`.
bool Load(std::string_view bytes, TXMemIniFile& ini) {
  const TEncoding encoding = TEncoding::FromMark(bytes).value_or(TEncoding::Utf8());
  if (bytes.starts_with(encoding.Mark())) bytes.remove_prefix(encoding.Mark().size());
  String text;
  const bool valid = encoding.Decode(bytes, text);
  TStringList lines;
  lines.SetText(text);
  ini.SetStrings(lines);
  TStringList kept;
  ini.GetStrings(kept);
  return valid && FilledLines(kept) == FilledLines(lines);
}

void WriteCopy(StringView file_name, std::string_view bytes) {
  platform::SystemError error = 0;
  String copy;
  for (int number = 1; number < 1000; ++number) {
    copy = String(file_name) + u".kept-" + IntToStr(number);
    platform::File file;
    error = file.Open(copy, platform::FileAccess::kWrite, platform::FileSharing::kNone,
                      platform::FileCreation::kCreatePrivate);
    if (error != 0 && platform::FileExists(copy)) continue;
    std::size_t done = 0;
    if (error == 0) error = file.Write(std::as_bytes(std::span(bytes)), done);
    if (error == 0) error = file.Flush();
    break;
  }
  if (error == 0) return;
  throw EFCreateError(
      Format(u"Cannot create file \"%s\". %s", {copy, platform::SystemErrorText(error)}));
}

String SectionName(const SettingsFile::Section& section) {
  return section ? Escaped(*section, Place::kSection) : String(kRootSection);
}

bool HasSection(const TXMemIniFile& ini, StringView name) {
  TStringList sections;
  ini.ReadSections(sections);
  return sections.IndexOf(name) >= 0;
}

String ValueIn(const TXMemIniFile& ini, StringView section, StringView name) {
  return Unescaped(ini.ReadString(section, Escaped(name, Place::kName), {}));
}

}  // namespace

SettingsFile::SettingsFile(StringView folder)
    : folder_(String(folder) + u"zentavo"),
      file_name_(folder_ + platform::PathSeparator() + u"settings.ini") {}

void SettingsFile::Update(const std::function<void(TXMemIniFile&)>& change) const {
  const auto require = [this](platform::SystemError error) {
    if (error == 0) return;
    throw EFCreateError(
        Format(u"Cannot create file \"%s\". %s", {file_name_, platform::SystemErrorText(error)}));
  };
  require(platform::MakeSettingsFolder(folder_));
  platform::LockFile lock;
  require(lock.Lock(file_name_ + u".lock"));
  const AnsiString bytes = ReadBytes(file_name_);
  TXMemIniFile ini({}, TEncoding::Utf8());
  const bool whole = Load(bytes, ini);
  change(ini);
  const AnsiString changed = ini.SaveBytes();
  if (!whole) WriteCopy(file_name_, bytes);
  SaveFileAtomically(file_name_, std::as_bytes(std::span(changed)));
}

String SettingsFile::Read(const Section& section, StringView name) const {
  const String section_name = SectionName(section);
  TXMemIniFile ini({}, TEncoding::Utf8());
  try {
    Load(ReadBytes(file_name_), ini);
    if (HasSection(ini, section_name)) return ValueIn(ini, section_name, name);
    String value;  // another process may have written it since
    Update([&](TXMemIniFile& current) {
      if (!HasSection(current, section_name)) current.AddSection(section_name);
      value = ValueIn(current, section_name, name);
    });
    return value;
  } catch (const EStreamError&) {
    return ValueIn(ini, kRootSection, name);
  }
}

void SettingsFile::Write(const Section& section, StringView name, StringView value) const {
  Update([&](TXMemIniFile& ini) {
    ini.WriteString(SectionName(section), Escaped(name, Place::kName),
                    Escaped(value, Place::kValue));
  });
}

}  // namespace zentavo
