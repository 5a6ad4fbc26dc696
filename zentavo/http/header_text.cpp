#include "zentavo/http/header_text.h"

#include <algorithm>

namespace zentavo {

namespace {

bool IsTokenUnit(char16_t unit) {
  const char16_t upper = UpCase(unit);
  return IsDigit(unit) || (upper >= u'A' && upper <= u'Z') ||
         StringView(u"!#$%&'*+-.^_`|~").find(unit) != StringView::npos;
}

bool IsValueUnit(char16_t unit) {
  return unit == u'\t' || (unit >= 0x20 && unit != 0x7F);
}

// Takes the next line from the front of `rest`, without the CR LF that alone ends it.
StringView TakeHeaderLine(StringView& rest) {
  const std::size_t end = rest.find(u"\r\n");
  const StringView line = rest.substr(0, end);
  rest.remove_prefix(end == StringView::npos ? rest.size() : end + 2);
  return line;
}

StringView NameOf(StringView line) {
  const std::size_t colon = line.find(u':');
  return colon == StringView::npos ? StringView() : line.substr(0, colon);
}

constexpr StringView kNames[] = {u"MIME-Version",
                                 u"Content-Type",
                                 u"Content-Transfer-Encoding",
                                 u"Content-ID",
                                 u"Content-Description",
                                 u"Content-Length",
                                 u"Content-Language",
                                 u"Allow",
                                 u"Public",
                                 u"Date",
                                 u"Expires",
                                 u"Last-Modified",
                                 u"Message-ID",
                                 u"URI",
                                 u"Derived-From",
                                 u"Cost",
                                 u"Link",
                                 u"Pragma",
                                 u"",  // the protocol version, the status and its text, the whole
                                 u"",
                                 u"",
                                 u"",
                                 u"",
                                 u"Connection",
                                 u"Accept",
                                 u"Accept-Charset",
                                 u"Accept-Encoding",
                                 u"Accept-Language",
                                 u"Authorization",
                                 u"Content-Encoding",
                                 u"Forwarded",
                                 u"From",
                                 u"If-Modified-Since",
                                 u"Location",
                                 u"Orig-URI",
                                 u"Referer",
                                 u"Retry-After",
                                 u"Server",
                                 u"Title",
                                 u"User-Agent",
                                 u"WWW-Authenticate",
                                 u"Proxy-Authenticate",
                                 u"Accept-Ranges",
                                 u"Set-Cookie",
                                 u"Cookie",
                                 u"",  // the verb
                                 u"Refresh",
                                 u"Content-Disposition",
                                 u"Age",
                                 u"Cache-Control",
                                 u"Content-Base",
                                 u"Content-Location",
                                 u"Content-MD5",
                                 u"Content-Range",
                                 u"ETag",
                                 u"Host",
                                 u"If-Match",
                                 u"If-None-Match",
                                 u"If-Range",
                                 u"If-Unmodified-Since",
                                 u"Max-Forwards",
                                 u"Proxy-Authorization",
                                 u"Range",
                                 u"Transfer-Encoding",
                                 u"Upgrade",
                                 u"Vary",
                                 u"Via",
                                 u"Warning",
                                 u"Expect",
                                 u"Proxy-Connection",
                                 u"Unless-Modified-Since"};

}  // namespace

bool IsToken(StringView text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsTokenUnit);
}

bool IsHeaderLine(StringView text) {
  const StringView name = NameOf(text);
  return IsToken(name) && std::all_of(text.begin() + static_cast<std::ptrdiff_t>(name.size()) + 1,
                                      text.end(), IsValueUnit);
}

bool AreHeaderLines(StringView text) {
  while (!text.empty()) {
    if (!IsHeaderLine(TakeHeaderLine(text))) return false;
  }
  return true;
}

std::optional<StringView> FindHeader(StringView lines, StringView name) {
  while (!lines.empty()) {
    const StringView line = TakeHeaderLine(lines);
    const StringView found = NameOf(line);
    if (!found.empty() && SameText(found, name)) return TrimView(line.substr(found.size() + 1));
  }
  return std::nullopt;
}

String WithoutHeaders(StringView lines, std::initializer_list<StringView> names) {
  String result;
  while (!lines.empty()) {
    const StringView line = TakeHeaderLine(lines);
    const bool taken_out = std::any_of(
        names.begin(), names.end(), [&](StringView name) { return SameText(NameOf(line), name); });
    if (!taken_out) result.append(line).append(u"\r\n");
  }
  return result;
}

StringView HeaderParameter(StringView value, StringView name) {
  while (!value.empty()) {
    const std::size_t end = std::min(value.find(u';'), value.size());
    const StringView part = value.substr(0, end);
    value.remove_prefix(std::min(end + 1, value.size()));
    const std::size_t equals = part.find(u'=');
    if (equals == StringView::npos || !SameText(TrimView(part.substr(0, equals)), name)) continue;
    StringView found = TrimView(part.substr(equals + 1));
    if (found.size() >= 2 && found.front() == u'"' && found.back() == u'"') {
      found = found.substr(1, found.size() - 2);
    }
    return found;
  }
  return {};
}

StringView HeaderName(std::int32_t id) {
  return id >= 0 && static_cast<std::size_t>(id) < std::size(kNames)
             ? kNames[static_cast<std::size_t>(id)]
             : StringView();
}

}  // namespace zentavo
