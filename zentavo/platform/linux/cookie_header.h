// The session's cookies for an exchange that libcurl does not make itself.
#pragma once

#include <curl/curl.h>

#include <string>
#include <string_view>

namespace zentavo::platform {

// The value of the Cookie header of a request to `host` for `path`; empty when there are none. The
// cookies are those that `easy` would send.
std::string CookieHeader(CURL* easy, std::string_view host, std::string_view path, bool secure);

}  // namespace zentavo::platform
