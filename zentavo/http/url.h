// Web addresses taken apart.
//
//   TUrlParts parts = SplitUrl(u"https://example.org:8443/orders?id=7#top");
//   // Scheme "https", Host "example.org", Port 8443, Path "/orders?id=7"
//
// An address is scheme "://" [user [":" password] "@"] host [":" port] [path] ["?" query]
// ["#" fragment]. The host is a name, an IPv4 address, or an IPv6 address in brackets. Characters
// beyond ASCII in the path and the query are written as the percent form of their UTF-8 bytes.
//
// All functions may be called from any thread.
#pragma once

#include <optional>

#include "zentavo/framework/text.h"

namespace zentavo {

struct TUrlParts {
  String Scheme;  // lower case
  String Host;    // an IPv6 address without its brackets
  std::uint16_t Port = 0;
  String Path;  // begins with '/', keeps the query, loses the fragment
  bool IsSecure = false;

  bool operator==(const TUrlParts&) const = default;
};

// Returns nothing for what is no address of a scheme http, https, ws or wss: blanks and control
// characters anywhere, an empty host, a port outside 1..65535. User and password are skipped.
ZENTAVO_API std::optional<TUrlParts> TrySplitUrl(StringView Url);
// Raises EZentavoError "Error in URL: " and the address.
ZENTAVO_API TUrlParts SplitUrl(StringView Url);

// The address that `Reference`, absolute or relative, leads to from `Base`; nothing when it is
// none.
ZENTAVO_API std::optional<TUrlParts> ResolveUrl(const TUrlParts& Base, StringView Reference);

}  // namespace zentavo
