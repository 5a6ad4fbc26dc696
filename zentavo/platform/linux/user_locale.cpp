#include "zentavo/platform/linux/user_locale.h"

#include <unicode/uloc.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace zentavo::platform {

namespace {

constexpr const char* kDefaultLocale = "en_US";

bool LanguageKnown(const std::string& locale) {
  const std::string language = locale.substr(0, locale.find('_'));
  for (std::int32_t i = 0; i < uloc_countAvailable(); ++i) {
    if (language == uloc_getAvailable(i)) return true;
  }
  return false;
}

}  // namespace

std::string UserLocale(const char* category) {
  for (const char* name : {"LC_ALL", category, "LANG"}) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value == '\0') continue;
    const std::string locale(value, std::strcspn(value, ".@"));
    return LanguageKnown(locale) ? locale : kDefaultLocale;
  }
  return kDefaultLocale;
}

}  // namespace zentavo::platform
