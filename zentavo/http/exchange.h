// A request handle: one exchange with a server, over as many redirects as it takes.
//
// A redirect keeps verb and body with status 307 and 308. With 303 every verb but HEAD, with 301
// and 302 POST becomes GET, without a body and the headers that describe one. At most ten redirects
// are followed, more are error 12156; none from HTTPS to HTTP: that answer comes back as it is.
// Authorization, Proxy-Authorization, Cookie and Host lines stay with the first server (scheme,
// host and port).
//
// The operations return 0 or a code of platform/http.h.
#pragma once

#include <memory>
#include <optional>

#include "zentavo/framework/stream.h"
#include "zentavo/http/url.h"
#include "zentavo/platform/http.h"

namespace zentavo {

class ZENTAVO_API HttpExchange {
 public:
  // `address` is that of `connection` and the path asked for. With an error there is no request,
  // and only destroying is left.
  HttpExchange(std::shared_ptr<platform::HttpSession> session,
               std::shared_ptr<platform::HttpConnection> connection, TUrlParts address,
               StringView verb, platform::SystemError& error);
  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;
  ~HttpExchange();

  // Sends with `headers`, lines ended by CR LF, and `body`, which may be null. Error 87 for a
  // header text that is not made of whole well-formed lines. May be called again behind an answer,
  // for another exchange of the verb.
  platform::SystemError Send(StringView headers, std::unique_ptr<platform::HttpBody> body);
  // Waits for the answer. Follows redirects.
  platform::SystemError Receive();

  // The status line and the headers of the answer, each line ended by CR LF; empty before Receive.
  const String& RawHeaders() const { return raw_headers_; }
  // The value of the first header `name`, without regard to case; nothing when there is none.
  std::optional<StringView> Header(StringView name) const;
  // The digits from the status line's tenth character on; 0 without any.
  std::uint32_t StatusCode() const;

  // Hands the body to `sink` in pieces.
  platform::SystemError ReadBody(const platform::HttpRequest::BodySink& sink);

 private:
  platform::SystemError Open();
  platform::SystemError SendOnce();
  platform::SystemError ReceiveOnce();
  std::optional<TUrlParts> RedirectTarget() const;
  platform::SystemError Follow(TUrlParts target);
  void ReduceToGet();
  platform::SystemError ConnectTo(const TUrlParts& target);

  std::shared_ptr<platform::HttpSession> session_;
  std::shared_ptr<platform::HttpConnection> connection_;
  TUrlParts address_;
  String verb_;
  String headers_;
  std::unique_ptr<platform::HttpBody> body_;
  bool sent_ = false;
  std::unique_ptr<platform::HttpRequest> request_;
  String raw_headers_;
};

// The request handle of the connection's operations; null when closed.
using THTTPHandle = std::unique_ptr<HttpExchange>;

}  // namespace zentavo
