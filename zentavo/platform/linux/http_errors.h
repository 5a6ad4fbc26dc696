// libcurl's results as the error codes of the seam.
#pragma once

#include <curl/curl.h>

#include <string_view>

#include "zentavo/platform/http.h"

namespace zentavo::platform {

// `text` is libcurl's own for the result.
SystemError HttpErrorOf(CURLcode result, std::string_view text);

}  // namespace zentavo::platform
