// Any bytes as an ini file, in every encoding: what was read must be the same when its text form is
// read again, and look-ups must agree with a search through the lines.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "zentavo/config/mem_ini_file.h"

namespace {

using zentavo::TEncoding;
using zentavo::TStringList;
using zentavo::TXMemIniFile;

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckTextForm(const TXMemIniFile& ini) {
  TStringList lines;
  ini.GetStrings(lines);
  TXMemIniFile again(u"");
  again.SetStrings(lines);
  TStringList lines_again;
  again.GetStrings(lines_again);
  Require(lines.Equals(lines_again));
}

void CheckLookUps(const TXMemIniFile& ini) {
  TStringList sections;
  ini.ReadSections(sections);
  for (std::int32_t i = 0; i < sections.Count() && i < 50; ++i) {
    TStringList lines;
    ini.ReadSectionValues(sections[i], lines);
    for (std::int32_t line = 0; line < lines.Count() && line < 50; ++line) {
      const zentavo::String name = lines.Names(line);
      if (lines.IndexOfName(name) != line) continue;
      Require(ini.ReadString(sections[i], name, u"\n") == lines.ValueFromIndex(line));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const TEncoding encodings[] = {TEncoding::Utf8(), TEncoding::Utf16LE(), TEncoding::Utf16BE(),
                                 TEncoding(1253), TEncoding(932)};
  const TEncoding encoding = encodings[data[0] % std::size(encodings)];
  const bool given = (data[0] & 0x80) != 0;
  TXMemIniFile ini(u"", given ? std::optional(encoding) : std::nullopt, (data[0] & 0x40) != 0);
  ini.LoadBytes({reinterpret_cast<const char*>(data) + 1, size - 1});
  CheckTextForm(ini);
  CheckLookUps(ini);
  return 0;
}
