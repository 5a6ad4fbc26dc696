#include "zentavo/http/exchange.h"

#include <utility>

#include "zentavo/http/header_text.h"

namespace zentavo {

using platform::SystemError;

namespace {

constexpr int kMostRedirects = 10;    // as many as the system's own service follows
constexpr std::size_t kStatusAt = 9;  // behind "HTTP/1.1 "

bool SameServer(const TUrlParts& a, const TUrlParts& b) {
  return a.IsSecure == b.IsSecure && a.Port == b.Port && SameText(a.Host, b.Host);
}

bool IsRedirect(std::uint32_t status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

bool BecomesGet(std::uint32_t status, StringView verb) {
  if (status == 303) return verb != u"HEAD";
  return (status == 301 || status == 302) && verb == u"POST";
}

}  // namespace

HttpExchange::HttpExchange(std::shared_ptr<platform::HttpSession> session,
                           std::shared_ptr<platform::HttpConnection> connection, TUrlParts address,
                           StringView verb, SystemError& error)
    : session_(std::move(session)),
      connection_(std::move(connection)),
      address_(std::move(address)),
      verb_(verb) {
  error = Open();
}

HttpExchange::~HttpExchange() = default;

SystemError HttpExchange::Open() {
  SystemError error = 0;
  request_.reset();
  request_ = platform::HttpRequest::Open(*connection_, address_.Path, verb_, error);
  raw_headers_.clear();
  sent_ = false;
  return error;
}

SystemError HttpExchange::Send(StringView headers, std::unique_ptr<platform::HttpBody> body) {
  if (!AreHeaderLines(headers)) return platform::kHttpInvalidParameter;
  headers_ = headers;
  if (!headers_.empty() && !headers_.ends_with(u"\r\n")) headers_ += u"\r\n";
  body_ = std::move(body);
  if (sent_) {
    if (const SystemError error = Open()) return error;
  }
  return SendOnce();
}

SystemError HttpExchange::SendOnce() {
  sent_ = true;
  if (body_ != nullptr) body_->Rewind();
  return request_->Send(headers_, body_.get());
}

SystemError HttpExchange::ReceiveOnce() {
  const SystemError error = request_->Receive();
  if (error == 0) raw_headers_ = request_->RawHeaders();
  return error;
}

SystemError HttpExchange::Receive() {
  for (int redirects = 0;; ++redirects) {
    if (const SystemError error = ReceiveOnce()) return error;
    std::optional<TUrlParts> target = RedirectTarget();
    if (!target) return 0;
    if (redirects == kMostRedirects) return platform::kHttpRedirectFailed;
    if (const SystemError error = Follow(*std::move(target))) return error;
  }
}

std::optional<TUrlParts> HttpExchange::RedirectTarget() const {
  if (!IsRedirect(StatusCode())) return std::nullopt;
  const std::optional<StringView> location = Header(u"Location");
  if (!location || location->empty()) return std::nullopt;
  std::optional<TUrlParts> target = ResolveUrl(address_, *location);
  if (target && address_.IsSecure && !target->IsSecure) return std::nullopt;
  return target;
}

SystemError HttpExchange::Follow(TUrlParts target) {
  if (BecomesGet(StatusCode(), verb_)) ReduceToGet();
  if (!SameServer(address_, target)) {
    headers_ =
        WithoutHeaders(headers_, {u"Authorization", u"Proxy-Authorization", u"Cookie", u"Host"});
    if (const SystemError error = ConnectTo(target)) return error;
  }
  address_ = std::move(target);
  if (const SystemError error = Open()) return error;
  return SendOnce();
}

void HttpExchange::ReduceToGet() {
  verb_ = u"GET";
  body_.reset();
  headers_ = WithoutHeaders(headers_, {u"Content-Type", u"Content-Length", u"Content-Encoding",
                                       u"Content-Language", u"Transfer-Encoding"});
}

SystemError HttpExchange::ConnectTo(const TUrlParts& target) {
  SystemError error = 0;
  request_.reset();
  connection_ =
      platform::HttpConnection::Open(session_, {target.Host, target.Port, target.IsSecure}, error);
  return error;
}

std::optional<StringView> HttpExchange::Header(StringView name) const {
  return FindHeader(raw_headers_, name);
}

std::uint32_t HttpExchange::StatusCode() const {
  std::uint32_t status = 0;
  for (std::size_t i = kStatusAt; i < raw_headers_.size() && IsDigit(raw_headers_[i]); ++i) {
    status = status * 10 + (raw_headers_[i] - u'0');
  }
  return status;
}

SystemError HttpExchange::ReadBody(const platform::HttpRequest::BodySink& sink) {
  return request_->ReadBody(sink);
}

}  // namespace zentavo
