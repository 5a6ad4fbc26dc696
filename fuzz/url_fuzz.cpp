// Takes any text apart as an address, and as a reference from one: what comes out is taken apart
// again to the same, and holds nothing that a request line must not.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "zentavo/http/url.h"

namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

void Check(const zentavo::TUrlParts& parts) {
  Require(parts.Port != 0 && zentavo::IsHostName(parts.Host));
  Require(parts.Path.starts_with(u'/'));
  Require(std::all_of(parts.Path.begin(), parts.Path.end(),
                      [](char16_t unit) { return unit > 0x20 && unit < 0x7F; }));
  const std::string port = std::to_string(parts.Port);
  const bool ipv6 = parts.Host.find(u':') != parts.Host.npos;
  const zentavo::String again = parts.Scheme + u"://" + (ipv6 ? u"[" : u"") + parts.Host +
                                (ipv6 ? u"]:" : u":") + zentavo::String(port.begin(), port.end()) +
                                parts.Path;
  Require(zentavo::TrySplitUrl(again) == parts);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zentavo::String text = zentavo::FromUtf8({reinterpret_cast<const char*>(data), size});
  if (const auto parts = zentavo::TrySplitUrl(text)) Check(*parts);
  const zentavo::TUrlParts base{u"https", u"example.org", 443, u"/a/b?c", true};
  if (const auto parts = zentavo::ResolveUrl(base, text)) Check(*parts);
  return 0;
}
