// Web addresses taken apart.
//
//   TUrlParts parts = SplitUrl(u"https://example.org:8443/orders?id=7#top");
//   // Scheme "https", Host "example.org", Port 8443, Path "/orders?id=7"
//
// An address is scheme "://" [user [":" password] "@"] host [":" port] [path] ["?" query]
// ["#" fragment]. The host is a name, an IPv4 address, or an IPv6 address in brackets; a name may
// have letters of any script. Path and query get the form that a request needs, see RequestPath.
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

// Returns nothing for what is no address of a scheme http, https, ws or wss, so also for an empty
// host, a port outside 1..65535, a blank before the path, a control character. User and password
// are skipped. A backslash behind the host begins the path and is part of it.
ZENTAVO_API std::optional<TUrlParts> TrySplitUrl(StringView Url);
// Raises EZentavoError "Error in URL: " and the address.
ZENTAVO_API TUrlParts SplitUrl(StringView Url);

// The address that `Reference`, absolute or relative, leads to from `Base`; nothing when it is
// none.
ZENTAVO_API std::optional<TUrlParts> ResolveUrl(const TUrlParts& Base, StringView Reference);

// Whether `Host` can stand in an address; an IPv6 address without its brackets.
ZENTAVO_API bool IsHostName(StringView Host);

// `Path` as a request line carries it: with '/' in front, without a fragment, blanks, "<>\^`{|}
// and what is beyond ASCII as the percent form of the UTF-8 bytes. What is in percent form stays.
// Nothing when it has a control character.
ZENTAVO_API std::optional<String> RequestPath(StringView Path);

}  // namespace zentavo
