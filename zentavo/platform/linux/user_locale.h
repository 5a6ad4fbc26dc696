// The locale that the user's environment names.
#pragma once

#include <string>

namespace zentavo::platform {

// Returns the locale for a category such as "LC_TIME", "el_GR" for instance: what LC_ALL, the
// category or LANG name, English (United States) for none and for one that is unknown.
std::string UserLocale(const char* category);

}  // namespace zentavo::platform
