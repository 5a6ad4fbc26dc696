// Settings of the user that belong to one test, gone with it.
#pragma once

#include <filesystem>

#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace zentavo::testing {

#ifdef _WIN32

// The user's part of the registry is another one for this process meanwhile.
class OwnUserSettings {
 public:
  OwnUserSettings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    HKEY key = nullptr;
    RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    RegOverridePredefKey(HKEY_CURRENT_USER, key);
    RegCloseKey(key);
  }
  OwnUserSettings(const OwnUserSettings&) = delete;
  OwnUserSettings& operator=(const OwnUserSettings&) = delete;
  ~OwnUserSettings() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
  }

 private:
  static constexpr const wchar_t* kKey = L"SOFTWARE\\ZentavoTests";
};

#else

// Those of programs that this process starts too.
class OwnUserSettings {
 private:
  const TemporaryFolder folder_;
  const EnvironmentVariable place_{"XDG_CONFIG_HOME",
                                   std::filesystem::path(folder_.Path()).string()};
};

#endif

}  // namespace zentavo::testing
