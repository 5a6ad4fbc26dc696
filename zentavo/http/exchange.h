// A request handle: one exchange with a server, over as many redirects as it takes.
//
// A redirect keeps verb and body with status 307 and 308; with 303, and with 301 and 302 after a
// POST, it becomes a GET without them (a HEAD stays one). It is followed up to ten times, never
// from HTTPS to HTTP, and takes Authorization, Proxy-Authorization and Cookie lines to the same
// host and port only. An answer that is not followed comes back as it is.
#pragma once

#include <memory>

#include "zentavo/framework/stream.h"
#include "zentavo/http/url.h"
#include "zentavo/platform/http.h"

namespace zentavo {

class ZENTAVO_API HttpExchange {
 public:
  // Raises nothing; `error` is 0 or the system's code, and then there is no request.
  HttpExchange(std::shared_ptr<platform::HttpSession> session,
               const platform::HttpConnection& connection, TUrlParts address, StringView verb,
               platform::SystemError& error);
  HttpExchange(const HttpExchange&) = delete;
  HttpExchange& operator=(const HttpExchange&) = delete;
  ~HttpExchange();

  // Sends with `headers`, lines ended by CR LF, and `body`, which outlives the exchange; repeated
  // once when the server asks for a client certificate. A header text that is not made of whole
  // well-formed lines is refused with error 87.
  platform::SystemError Send(StringView headers, platform::HttpBody* body);
  // Waits for the answer; the same repetition. Follows redirects.
  platform::SystemError Receive();

  // The status line and the headers of the answer; empty before Receive.
  const String& RawHeaders() const { return raw_headers_; }
  // The first header `name`, compared without regard to case; nothing when there is none.
  std::optional<String> Header(StringView name) const;
  // By the status line's tenth character and on; 0 without digits there.
  std::uint32_t StatusCode() const;

  platform::SystemError ReadBody(const platform::HttpRequest::BodySink& sink);

  // The system's request, of the last redirect.
  platform::HttpRequest& Request() { return *request_; }

 private:
  platform::SystemError Open();
  platform::SystemError SendOnce();
  platform::SystemError ReceiveOnce();
  bool Redirects(TUrlParts& target) const;
  platform::SystemError Follow(const TUrlParts& target);

  std::shared_ptr<platform::HttpSession> session_;
  std::unique_ptr<platform::HttpConnection> other_connection_;  // of a redirect to another server
  const platform::HttpConnection* connection_;
  TUrlParts address_;
  String verb_;
  String headers_;
  platform::HttpBody* body_ = nullptr;
  std::unique_ptr<platform::HttpRequest> request_;
  String raw_headers_;
};

// The request handle of the connection's operations; null when closed.
using THTTPHandle = std::unique_ptr<HttpExchange>;

}  // namespace zentavo
