#include "zentavo/settings/settings.h"

#include <optional>

#include "zentavo/framework/format.h"
#include "zentavo/platform/user_settings.h"
#include "zentavo/settings/settings_file.h"

namespace zentavo {

ERegistryException::~ERegistryException() = default;

namespace {

constexpr StringView kRegistryKey = u"SOFTWARE\\Zentavo";
constexpr std::size_t kMaxLevelUnits = 255;

StringView UpToZero(StringView text) {
  return text.substr(0, text.find(u'\0'));
}

// The levels joined again, without empty ones; nothing when one is too long.
std::optional<String> Normalised(StringView section) {
  String joined;
  for (StringView rest = UpToZero(section); !rest.empty();) {
    const StringView level = rest.substr(0, rest.find(u'\\'));
    rest.remove_prefix(level.size() < rest.size() ? level.size() + 1 : rest.size());
    if (level.size() > kMaxLevelUnits) return std::nullopt;
    if (level.empty()) continue;
    if (!joined.empty()) joined += u'\\';
    joined += level;
  }
  return joined;
}

// The key in the system's store; the empty text is its root.
String KeyOf(const std::optional<String>& section) {
  if (!section) return {};
  String key(kRegistryKey);
  if (!section->empty()) (key += u'\\') += *section;
  return key;
}

SettingsFile UserFile() {
  return SettingsFile(platform::SettingsFolder());
}

}  // namespace

String ReadRegistryString(StringView Section, StringView Name) {
  const std::optional<String> section = Normalised(Section);
  const StringView name = UpToZero(Name);
  const platform::SettingsStore* store = platform::SystemSettings();
  if (store == nullptr) return UserFile().Read(section, name);
  platform::Setting setting = store->read(KeyOf(section), name);
  if (setting.kind == platform::Setting::Kind::kOther) {
    throw ERegistryException(Format(u"Invalid data type for '%s'", {name}));
  }
  return std::move(setting.text);
}

void WriteRegistryString(StringView Section, StringView Name, StringView Value) {
  const std::optional<String> section = Normalised(Section);
  const StringView name = UpToZero(Name);
  const StringView value = UpToZero(Value);
  const auto fail = [name](StringView reason) {
    throw ERegistryException(Format(u"Failed to set data for '%s'. %s", {name, reason}));
  };
  const platform::SettingsStore* store = platform::SystemSettings();
  if (store == nullptr) {
    try {
      UserFile().Write(section, name, value);
    } catch (const Exception& error) {
      fail(error.Message());
    }
  } else if (const auto error = store->write(KeyOf(section), name, value)) {
    fail(platform::SystemErrorText(error));
  }
}

}  // namespace zentavo
