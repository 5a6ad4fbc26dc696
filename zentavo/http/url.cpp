#include "zentavo/http/url.h"

#include <algorithm>
#include <utility>

#include "zentavo/foundation/errors.h"

namespace zentavo {

namespace {

struct Scheme {
  StringView name;
  std::uint16_t port;
  bool secure;
};

constexpr Scheme kSchemes[] = {
    {u"http", 80, false}, {u"https", 443, true}, {u"ws", 80, false}, {u"wss", 443, true}};

const Scheme* FindScheme(StringView name) {
  const auto* const found = std::find_if(std::begin(kSchemes), std::end(kSchemes),
                                         [&](const Scheme& s) { return SameText(s.name, name); });
  return found == std::end(kSchemes) ? nullptr : found;
}

// Takes the text before the first of `ends` from the front of `rest`, leaving the end itself.
StringView TakeUntil(StringView& rest, StringView ends) {
  const std::size_t end = std::min(rest.find_first_of(ends), rest.size());
  const StringView taken = rest.substr(0, end);
  rest.remove_prefix(end);
  return taken;
}

bool IsAsciiLetterOrDigit(char16_t unit) {
  const char16_t upper = UpCase(unit);
  return IsDigit(unit) || (upper >= u'A' && upper <= u'Z');
}

bool IsHostUnit(char16_t unit) {
  return IsAsciiLetterOrDigit(unit) || unit >= 0xA0 ||
         StringView(u"-._").find(unit) != StringView::npos;
}

bool IsIpv6Unit(char16_t unit) {
  const char16_t upper = UpCase(unit);
  return IsDigit(unit) || (upper >= u'A' && upper <= u'F') || unit == u':' || unit == u'.';
}

// Takes the host from the front of `rest`; nothing when there is none or it is ill-formed.
std::optional<String> TakeHost(StringView& rest) {
  if (!rest.starts_with(u'[')) {
    const StringView host = TakeUntil(rest, u":");
    return IsHostName(host) ? std::optional<String>(host) : std::nullopt;
  }
  rest.remove_prefix(1);
  const StringView address = TakeUntil(rest, u"]");
  if (rest.empty() || !IsHostName(address)) return std::nullopt;
  rest.remove_prefix(1);
  return String(address);
}

// The port behind the host, ":" and digits; `otherwise` for none.
std::optional<std::uint16_t> PortOf(StringView text, std::uint16_t otherwise) {
  if (text.empty() || text == u":") return otherwise;
  if (text.front() != u':' || text.size() > 6) return std::nullopt;
  std::uint32_t port = 0;
  for (const char16_t unit : text.substr(1)) {
    if (!IsDigit(unit)) return std::nullopt;
    port = port * 10 + (unit - u'0');
  }
  if (port == 0 || port > 65535) return std::nullopt;
  return static_cast<std::uint16_t>(port);
}

// Whether a byte of a path stands for itself.
bool StaysInPath(unsigned char byte) {
  return byte > 0x20 && byte < 0x7F &&
         std::string_view("\"<>\\^`{|}").find(static_cast<char>(byte)) == std::string_view::npos;
}

// The path's last folder: all up to the last '/' before the query.
StringView FolderOf(StringView path) {
  path = path.substr(0, path.find(u'?'));
  return path.substr(0, path.rfind(u'/') + 1);
}

// Without "." and ".." segments; never above the root.
String WithoutDots(StringView path) {
  String result;
  while (!path.empty()) {
    path.remove_prefix(1);  // the '/'
    const StringView segment = TakeUntil(path, u"/");
    const bool up = segment == u"..";
    if (up) result.resize(result.empty() ? 0 : result.rfind(u'/'));
    if (up || segment == u".") {
      if (path.empty()) result += u'/';
    } else {
      result.append(u"/").append(segment);
    }
  }
  return result;
}

bool HasScheme(StringView reference) {
  const std::size_t colon = reference.find(u':');
  return colon != StringView::npos && colon < reference.find_first_of(u"/?#");
}

}  // namespace

bool IsHostName(StringView Host) {
  const bool ipv6 = Host.find(u':') != StringView::npos;
  return !Host.empty() && std::all_of(Host.begin(), Host.end(), ipv6 ? IsIpv6Unit : IsHostUnit);
}

std::optional<String> RequestPath(StringView Path) {
  constexpr char16_t kHex[] = u"0123456789ABCDEF";
  if (std::any_of(Path.begin(), Path.end(), [](char16_t u) { return u < 0x20 || u == 0x7F; })) {
    return std::nullopt;
  }
  Path = Path.substr(0, Path.find(u'#'));
  String result = Path.starts_with(u'/') ? String() : String(u"/");
  for (const char byte : ToUtf8(Path)) {
    const auto code = static_cast<unsigned char>(byte);
    if (StaysInPath(code)) {
      result += static_cast<char16_t>(code);
    } else {
      result.append({u'%', kHex[code >> 4], kHex[code & 15]});
    }
  }
  return result;
}

std::optional<TUrlParts> TrySplitUrl(StringView Url) {
  StringView rest = Url;
  const Scheme* const scheme = FindScheme(TakeUntil(rest, u":"));
  if (scheme == nullptr || !rest.starts_with(u"://")) return std::nullopt;
  rest.remove_prefix(3);
  StringView authority = TakeUntil(rest, u"/?#\\");
  if (std::any_of(authority.begin(), authority.end(), [](char16_t u) { return u <= 0x20; })) {
    return std::nullopt;
  }
  authority.remove_prefix(authority.rfind(u'@') + 1);  // npos + 1 is 0
  std::optional<String> host = TakeHost(authority);
  const std::optional<std::uint16_t> port = PortOf(authority, scheme->port);
  std::optional<String> path = RequestPath(rest);
  if (!host || !port || !path) return std::nullopt;
  return TUrlParts{String(scheme->name), *std::move(host), *port, *std::move(path), scheme->secure};
}

TUrlParts SplitUrl(StringView Url) {
  std::optional<TUrlParts> parts = TrySplitUrl(Url);
  if (!parts) ZentavoError(u"Error in URL: " + String(Url));
  return *std::move(parts);
}

std::optional<TUrlParts> ResolveUrl(const TUrlParts& Base, StringView Reference) {
  if (HasScheme(Reference)) return TrySplitUrl(Reference);
  if (Reference.starts_with(u"//")) return TrySplitUrl(Base.Scheme + u":" + String(Reference));
  Reference = Reference.substr(0, Reference.find(u'#'));
  TUrlParts target = Base;
  if (Reference.empty()) return target;
  String path(Reference);
  if (path.front() == u'?') {
    path.insert(0, Base.Path.substr(0, Base.Path.find(u'?')));
  } else if (path.front() != u'/') {
    path.insert(0, FolderOf(Base.Path));
  }
  const std::size_t query = std::min(path.find(u'?'), path.size());
  const std::optional<String> encoded =
      RequestPath(WithoutDots(StringView(path).substr(0, query)) + path.substr(query));
  if (!encoded) return std::nullopt;
  target.Path = *encoded;
  return target;
}

}  // namespace zentavo
