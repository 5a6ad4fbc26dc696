// HTTP/1.1 exchanges: WinHTTP on Windows, libcurl on Linux.
//
// A session holds what all its connections share: the agent, the decoding of bodies, the time-outs,
// and on Linux the idle connections that wait for their next use. A connection names one server; a
// request is one exchange with it, in the order Open, Send, Receive, ReadBody. Redirects are handed
// up as they are. Server certificates are verified against the system's store, TLS is 1.2 or later,
// and the proxy is the system's (on Linux by http_proxy, https_proxy, no_proxy).
//
// Errors are WinHTTP's codes on both platforms. Sessions may be used from any thread; a connection
// and its requests by one thread at a time. Each keeps what it stands on alive.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

// The codes that callers branch on.
inline constexpr SystemError kHttpTimeout = 12002;
inline constexpr SystemError kHttpNameNotResolved = 12007;
inline constexpr SystemError kHttpCannotConnect = 12029;
inline constexpr SystemError kHttpConnectionError = 12030;
inline constexpr SystemError kHttpClientCertificateNeeded = 12044;
inline constexpr SystemError kHttpInvalidResponse = 12152;
inline constexpr SystemError kHttpSecureFailure = 12175;
// Others that occur on both platforms.
inline constexpr SystemError kHttpInternalError = 12004;
inline constexpr SystemError kHttpInvalidUrl = 12005;
inline constexpr SystemError kHttpRedirectFailed = 12156;
inline constexpr SystemError kHttpHeaderSizeOverflow = 12182;
inline constexpr SystemError kHttpResponseOverflow = 12184;
inline constexpr SystemError kHttpInvalidParameter = 87;

// Milliseconds; 0 and below: without end. Connecting counts from the start of the exchange and on
// Linux spans the name's resolution. Sending counts from the last progress, receiving the headers
// from the end of the request, receiving the body from the last piece that the sink took.
struct HttpTimeouts {
  std::int32_t resolve_ms = 0;
  std::int32_t connect_ms = 60000;
  std::int32_t send_ms = 30000;
  std::int32_t receive_ms = 30000;
};

struct HttpSessionOptions {
  std::u16string user_agent;  // empty: none is sent
  bool decode = false;        // whether gzip and deflate are asked for and decoded
  HttpTimeouts timeouts;
};

struct HttpEndpoint {
  std::u16string host;  // a name or an address; one of IPv6 with or without its brackets
  std::uint16_t port = 0;
  bool secure = false;
};

class ZENTAVO_API HttpSession {
 public:
  static std::shared_ptr<HttpSession> Open(const HttpSessionOptions& options, SystemError& error);
  HttpSession(const HttpSession&) = delete;
  HttpSession& operator=(const HttpSession&) = delete;
  ~HttpSession();

  // For requests that are opened from now on.
  SystemError SetTimeouts(const HttpTimeouts& timeouts);

  struct State;
  const std::shared_ptr<State>& Native() const { return state_; }

 private:
  explicit HttpSession(std::shared_ptr<State> state);

  std::shared_ptr<State> state_;
};

// Progress of a request, with WinHTTP's numbers; Linux reports these.
inline constexpr std::uint32_t kHttpStatusSendingRequest = 0x10;
inline constexpr std::uint32_t kHttpStatusRequestSent = 0x20;  // info: the byte count, 32 bits
inline constexpr std::uint32_t kHttpStatusReceivingResponse = 0x40;
inline constexpr std::uint32_t kHttpStatusResponseReceived = 0x80;  // info: the byte count, 32 bits

class ZENTAVO_API HttpConnection {
 public:
  // Must not let an exception out. Runs within the operation that it reports on.
  using StatusCallback =
      std::function<void(std::uint32_t status, const void* info, std::uint32_t info_length)>;

  // Opening talks to nobody yet.
  static std::unique_ptr<HttpConnection> Open(const std::shared_ptr<HttpSession>& session,
                                              const HttpEndpoint& endpoint, SystemError& error);
  HttpConnection(const HttpConnection&) = delete;
  HttpConnection& operator=(const HttpConnection&) = delete;
  ~HttpConnection();

  // Reports the notifications in `flags` of requests that are opened from now on.
  SystemError SetStatusCallback(std::uint32_t flags, StatusCallback callback);

  struct State;
  const std::shared_ptr<State>& Native() const { return state_; }

 private:
  explicit HttpConnection(std::shared_ptr<State> state);

  std::shared_ptr<State> state_;
};

// The body of a request. What the operations throw passes through Send.
class ZENTAVO_API HttpBody {
 public:
  virtual ~HttpBody();
  virtual std::uint64_t Size() = 0;
  // Returns the count of bytes read, 0 at the end. An end before Size is an error.
  virtual std::size_t Read(std::span<std::byte> buffer) = 0;
  // Starts over, for the body to be sent again.
  virtual void Rewind() = 0;
};

class ZENTAVO_API HttpRequest {
 public:
  // Takes the next piece of a body, 16384 bytes at most. Returns 0 to go on, else the error that
  // ReadBody returns. May throw.
  using BodySink = std::function<SystemError(std::span<const std::byte> piece)>;

  // `path` and `verb` are ASCII without control characters and blanks.
  static std::unique_ptr<HttpRequest> Open(const HttpConnection& connection,
                                           std::u16string_view path, std::u16string_view verb,
                                           SystemError& error);
  HttpRequest(const HttpRequest&) = delete;
  HttpRequest& operator=(const HttpRequest&) = delete;
  ~HttpRequest();

  // `headers` are whole lines, each ended by CR LF; `body` may be null. Sending may end only within
  // Receive, so `body` outlives it. Where the server asks for a client certificate, Send and
  // Receive go on without one; 12044 where it insists.
  SystemError Send(std::u16string_view headers, HttpBody* body);
  // Waits for the headers of the answer.
  SystemError Receive();
  // The status line, the header lines and the empty line of the answer, each ended by CR LF.
  std::u16string RawHeaders() const;
  // Hands the whole body to `sink`.
  SystemError ReadBody(const BodySink& sink);

  struct State;
  State& Native() { return *state_; }

 private:
  explicit HttpRequest(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace zentavo::platform
