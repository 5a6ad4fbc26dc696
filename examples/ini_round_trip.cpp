// Settings that survive the program: written to an ini file, read back, changed and written again.
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "zentavo/config/mem_ini_file.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/text.h"

namespace {

void SaveFirst(const zentavo::String& file) {
  zentavo::TXMemIniFile ini(file);  // a file that does not exist counts as empty
  ini.WriteString(u"Printer", u"Name", u"Front office");
  ini.WriteInteger(u"Printer", u"Copies", 2);
  ini.WriteBool(u"Printer\\Tray", u"Manual", true);
  ini.UpdateFile();
}

void ChangeCopies(const zentavo::String& file) {
  zentavo::TXMemIniFile ini(file);
  ini.SetAutoSave(true);  // written when `ini` ends
  ini.WriteInteger(u"printer", u"COPIES", 1 + ini.ReadInteger(u"printer", u"copies", 1));
}

void Print(const zentavo::String& file) {
  const zentavo::TXMemIniFile ini(file);
  zentavo::TStringList lines;
  ini.GetStrings(lines);
  for (std::int32_t i = 0; i < lines.Count(); ++i) std::cout << zentavo::ToUtf8(lines[i]) << '\n';
  ini.ReadSubSections(u"Printer", lines);
  std::cout << "within Printer: " << zentavo::ToUtf8(lines.CommaText()) << '\n';
}

}  // namespace

int main() {
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / "zentavo_ini_round_trip.ini";
  const zentavo::String file = path.u16string();
  try {
    SaveFirst(file);
    ChangeCopies(file);
    Print(file);
  } catch (const zentavo::Exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
  std::filesystem::remove(path);
  return EXIT_SUCCESS;
}
