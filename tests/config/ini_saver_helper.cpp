// Saves an ini file of 1,000 lines forty times: FILE VALUE. Ends with 0, or 1 when a save failed.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "zentavo/config/mem_ini_file.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/platform/console.h"

int main(int count, char** arguments) {
  try {
    const std::vector<std::string> given = zentavo::platform::ProgramArguments(count, arguments);
    zentavo::TXMemIniFile ini(zentavo::FromUtf8(given.at(0)));
    ini.Clear();
    const zentavo::String value = zentavo::FromUtf8(given.at(1));
    for (int i = 0; i < 1000; ++i) ini.WriteString(u"s", zentavo::IntToStr(i), value);
    for (int i = 0; i < 40; ++i) ini.UpdateFile();
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
