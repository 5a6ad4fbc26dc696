// Writes thirty settings into the file of a folder: FOLDER NAME. Ends with 0, or 1 when one failed.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "zentavo/framework/number_text.h"
#include "zentavo/platform/console.h"
#include "zentavo/settings/settings_file.h"

int main(int count, char** arguments) {
  try {
    const std::vector<std::string> given = zentavo::platform::ProgramArguments(count, arguments);
    const zentavo::SettingsFile file(zentavo::FromUtf8(given.at(0)));
    const zentavo::String name = zentavo::FromUtf8(given.at(1));
    for (int i = 0; i < 30; ++i) file.Write(u"Shared", name + zentavo::IntToStr(i), name);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
