#include "zentavo/platform/user_settings.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

std::string HomeFolder() {
  const char* set = std::getenv("HOME");
  if (set != nullptr && *set == '/') return set;
  char buffer[4096];
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(geteuid(), &entry, buffer, sizeof buffer, &found);
  return found != nullptr ? found->pw_dir : "/";
}

}  // namespace

const SettingsStore* SystemSettings() {
  return nullptr;
}

std::u16string SettingsFolder() {
  // A path that is not absolute counts as not set.
  const char* set = std::getenv("XDG_CONFIG_HOME");
  if (set != nullptr && *set == '/') return PathFromBytes(set) + u'/';
  return PathFromBytes(HomeFolder() + "/.config/");
}

SystemError MakeSettingsFolder(std::u16string_view path) {
  const std::string bytes = PathBytes(path);
  for (std::size_t slash = bytes.find('/', 1);; slash = bytes.find('/', slash + 1)) {
    const std::string level = bytes.substr(0, slash);
    // What is there already may refuse to be made for another reason.
    if (mkdir(level.c_str(), 0700) != 0 && errno != EEXIST && access(level.c_str(), F_OK) != 0) {
      return LastSystemError();
    }
    if (slash == bytes.npos) return 0;
  }
}

}  // namespace zentavo::platform
