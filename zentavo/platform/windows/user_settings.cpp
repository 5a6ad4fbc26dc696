#include "zentavo/platform/user_settings.h"

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

// An open key below the user's, or the user's own where that cannot be opened. Neither copied nor
// moved.
class Key {
 public:
  explicit Key(std::u16string_view path) {
    if (path.empty() || RegCreateKeyExW(HKEY_CURRENT_USER, ToWide(path).c_str(), 0, nullptr, 0,
                                        KEY_ALL_ACCESS, nullptr, &key_, nullptr) != ERROR_SUCCESS) {
      key_ = HKEY_CURRENT_USER;
    }
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (key_ != HKEY_CURRENT_USER) RegCloseKey(key_);
  }
  HKEY Get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

Setting Read(std::u16string_view path, std::u16string_view name) {
  const Key key(path);
  const std::wstring wide_name = ToWide(name);
  std::wstring text(64, L'\0');
  DWORD type = REG_NONE;
  for (;;) {
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS status = RegQueryValueExW(key.Get(), wide_name.c_str(), nullptr, &type,
                                            reinterpret_cast<BYTE*>(text.data()), &size);
    // Another process may lengthen it in between, so this goes on until it fits.
    if (status == ERROR_MORE_DATA) {
      text.resize(size / sizeof(wchar_t) + 1);
      continue;
    }
    if (status != ERROR_SUCCESS) return {};
    text.resize(size / sizeof(wchar_t));
    break;
  }
  if (type != REG_SZ && type != REG_EXPAND_SZ) return {Setting::Kind::kOther, {}};
  return {Setting::Kind::kText, FromWide(std::wstring_view(text).substr(0, text.find(L'\0')))};
}

SystemError Write(std::u16string_view path, std::u16string_view name, std::u16string_view value) {
  const Key key(path);
  const std::wstring text = ToWide(value);
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  return static_cast<SystemError>(RegSetValueExW(key.Get(), ToWide(name).c_str(), 0, REG_SZ,
                                                 reinterpret_cast<const BYTE*>(text.c_str()),
                                                 size));
}

constexpr SettingsStore kRegistry = {Read, Write};

}  // namespace

const SettingsStore* SystemSettings() {
  return &kRegistry;
}

std::u16string SettingsFolder() {
  wchar_t path[MAX_PATH + 1];
  const DWORD size = GetEnvironmentVariableW(L"APPDATA", path, MAX_PATH);
  return size == 0 || size > MAX_PATH ? std::u16string() : FromWide({path, size}) + u'\\';
}

SystemError MakeSettingsFolder(std::u16string_view path) {
  for (std::size_t end = path.find(u'\\', 3);; end = path.find(u'\\', end + 1)) {
    const std::wstring level = SystemPath(path.substr(0, end));
    if (!CreateDirectoryW(level.c_str(), nullptr) &&
        GetFileAttributesW(level.c_str()) == INVALID_FILE_ATTRIBUTES) {
      return GetLastError();
    }
    if (end == path.npos) return 0;
  }
}

}  // namespace zentavo::platform
