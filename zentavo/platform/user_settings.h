// Where a system keeps small settings of its users: in a store of its own (the registry of
// Windows), or in files in a folder. All functions may be called from any thread.
#pragma once

#include <string>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

struct Setting {
  enum class Kind { kMissing, kText, kOther };
  Kind kind = Kind::kMissing;
  std::u16string text;  // of kText
};

// A store of texts by key and name, apart for each user. A key is a path with '\' between its
// levels, created where it is missing, by reading too; the empty key, and one that cannot be
// created, is the root.
struct SettingsStore {
  Setting (*read)(std::u16string_view key, std::u16string_view name);
  // Returns 0 or the system's error code.
  SystemError (*write)(std::u16string_view key, std::u16string_view name,
                       std::u16string_view value);
};

// The system's own store, null where it has none (Linux).
ZENTAVO_API const SettingsStore* SystemSettings();

// The user's folder for settings files of programs, with a trailing separator: on Linux
// XDG_CONFIG_HOME or ".config" in the home folder, on Windows the roaming application data (the
// empty text when it names none).
ZENTAVO_API std::u16string SettingsFolder();
// Creates `path`, and the folders above it, where they are missing; on Linux for this user alone.
ZENTAVO_API SystemError MakeSettingsFolder(std::u16string_view path);

}  // namespace zentavo::platform
