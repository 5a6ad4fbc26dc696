#include "zentavo/platform/linux/cookie_header.h"

#include <array>
#include <charconv>
#include <ctime>

#include "zentavo/platform/linux/http_request.h"

namespace zentavo::platform {

namespace {

// A line of libcurl's cookie list, in this order between tabs.
enum Field { kDomain, kForSubdomains, kPath, kSecure, kExpires, kName, kValue, kFieldCount };
using Fields = std::array<std::string_view, kFieldCount>;

constexpr std::string_view kHttpOnly = "#HttpOnly_";

Fields SplitLine(std::string_view line) {
  Fields fields;
  if (line.starts_with(kHttpOnly)) line.remove_prefix(kHttpOnly.size());
  for (std::string_view& field : fields) {
    const std::size_t end = &field != &fields.back() ? line.find('\t') : line.npos;
    field = line.substr(0, end);
    line = end != line.npos ? line.substr(end + 1) : std::string_view();
  }
  return fields;
}

bool IsForHost(const Fields& cookie, std::string_view host) {
  std::string_view domain = cookie[kDomain];
  if (domain.starts_with('.')) domain.remove_prefix(1);
  if (!host.ends_with(domain)) return false;
  host.remove_suffix(domain.size());
  return host.empty() || (cookie[kForSubdomains] == "TRUE" && host.ends_with('.'));
}

bool IsForPath(std::string_view cookie_path, std::string_view path) {
  path = path.substr(0, path.find('?'));
  if (!path.starts_with(cookie_path)) return false;
  return path.size() == cookie_path.size() || cookie_path.ends_with('/') ||
         path[cookie_path.size()] == '/';
}

bool HasExpired(std::string_view expires) {
  std::int64_t time = 0;
  std::from_chars(expires.data(), expires.data() + expires.size(), time);
  return time != 0 && time < std::time(nullptr);
}

}  // namespace

std::string CookieHeader(CURL* easy, std::string_view host, std::string_view path, bool secure) {
  curl_slist* lines = nullptr;
  curl_easy_getinfo(easy, CURLINFO_COOKIELIST, &lines);
  const CurlList list(lines);
  std::string header;
  for (const curl_slist* line = lines; line != nullptr; line = line->next) {
    const Fields cookie = SplitLine(line->data);
    if (!IsForHost(cookie, host) || !IsForPath(cookie[kPath], path) ||
        HasExpired(cookie[kExpires]) || (cookie[kSecure] == "TRUE" && !secure)) {
      continue;
    }
    if (!header.empty()) header += "; ";
    header.append(cookie[kName]).append("=").append(cookie[kValue]);
  }
  return header;
}

}  // namespace zentavo::platform
