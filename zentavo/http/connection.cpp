#include "zentavo/http/connection.h"

#include <limits>
#include <utility>

#include "zentavo/foundation/errors.h"
#include "zentavo/http/bodies.h"
#include "zentavo/http/header_text.h"
#include "zentavo/http/response_text.h"
#include "zentavo/http/session.h"

namespace zentavo {

using platform::SystemError;

namespace {

constexpr SystemError kNoConnection = 6;  // the system's code for a handle that is none
constexpr std::uint32_t kNoContent = 204;
constexpr std::uint32_t kFirstFailure = 300;
constexpr std::size_t kRawHeaderUnits = 2000 / sizeof(char16_t) - 1;  // a terminated buffer's text
constexpr std::int32_t kSendTimeout = 30000;

std::uint16_t PortOrDefault(std::uint16_t port, bool secure) {
  if (port != 0) return port;
  return secure ? 443 : 80;
}

// Counts what a body brings; answers with an error beyond `limit` bytes.
class SizeLimit {
 public:
  explicit SizeLimit(std::int64_t limit) : left_(limit) {}

  SystemError Take(std::size_t count) {
    left_ -= static_cast<std::int64_t>(count);
    return left_ < 0 ? platform::kHttpResponseOverflow : 0;
  }

 private:
  std::int64_t left_;
};

}  // namespace

void RaiseHttpError(std::uint32_t code) {
  const auto id = static_cast<std::int32_t>(code);
  const String reason = code == platform::kHttpCannotConnect ? String(u"Cannot Connect to Server")
                                                             : Format(u"Error %d", {id});
  ZentavoExtError(id, u"[WinHTTP]: " + reason);
}

THTTPConnection::THTTPConnection(bool OwnedSession, bool zentavosession)
    : FIsSessionOwned(OwnedSession) {
  SystemError error = 0;
  FSession = OwnedSession ? OpenHttpSession(zentavosession, error) : SharedHttpSession(error);
  Check(error);
}

THTTPConnection::~THTTPConnection() {
  CloseWebSocket();
}

std::unique_ptr<THTTPConnection> THTTPConnection::CreateConnection(StringView srvname,
                                                                   bool IsSecure,
                                                                   std::uint16_t port) {
  auto connection = std::make_unique<THTTPConnection>();
  connection->OpenConnection(srvname, IsSecure, port);
  return connection;
}

void THTTPConnection::OpenConnection(StringView srvname, bool IsSecure, std::uint16_t port) {
  if (FConnection && FIsSecure == IsSecure && FServerName == srvname) return;
  FConnection.reset();
  if (!IsHostName(srvname)) Check(platform::kHttpInvalidUrl);
  SystemError error = 0;
  FPort = PortOrDefault(port, IsSecure);
  FConnection = platform::HttpConnection::Open(FSession, {String(srvname), FPort, IsSecure}, error);
  Check(error);
  FServerName = srvname;
  FIsSecure = IsSecure;
}

void THTTPConnection::OpenConnectionFromUrl(StringView Url, String& path) {
  TUrlParts parts = SplitUrl(Url);
  OpenConnection(parts.Host, parts.IsSecure, parts.Port);
  path = std::move(parts.Path);
}

void THTTPConnection::SetTimeouts(std::int32_t ReceiveTimeout, std::int32_t ConnectTimeout) {
  Check(FSession->SetTimeouts({0, ConnectTimeout, kSendTimeout, ReceiveTimeout}));
}

void THTTPConnection::HttpCallTimeouts(std::int32_t Connect, std::int32_t Send,
                                       std::int32_t Receive) {
  SetThreadHttpTimeouts(Connect, Send, Receive);
}

void THTTPConnection::EnableCallbacks(std::uint32_t dwNotificationFlags) {
  if (!FConnection) Check(kNoConnection);
  const auto forward = [this](std::uint32_t status, const void* info, std::uint32_t length) {
    CallBack(status, info, length);
  };
  Check(FConnection->SetStatusCallback(dwNotificationFlags, forward));
}

THTTPHandle THTTPConnection::OpenRequest(StringView path, StringView verb) {
  if (!FConnection) Check(kNoConnection);
  std::optional<String> target = RequestPath(path);
  if (!target || !IsToken(verb)) Check(platform::kHttpInvalidParameter);
  TUrlParts address{FIsSecure ? u"https" : u"http", FServerName, FPort, *std::move(target),
                    FIsSecure};
  SystemError error = 0;
  auto request =
      std::make_unique<HttpExchange>(FSession, FConnection, std::move(address), verb, error);
  Check(error);
  return request;
}

bool THTTPConnection::Request(StringView path, TStream* input, TStream* output,
                              StringView extraheaders, String& outheaders, StringView AVerb,
                              TStream* Stream) {
  const bool has_input = input != nullptr && input->Size() > 0;
  const StringView usual_verb = has_input ? u"POST" : u"GET";
  const THTTPHandle request = OpenRequest(path, AVerb.empty() ? usual_verb : AVerb);
  Send(*request, extraheaders, has_input ? std::make_unique<StreamBody>(*input) : nullptr);
  ReceiveResponse(*request, Stream);
  outheaders = request->RawHeaders().substr(0, kRawHeaderUnits);
  FLastStatus = request->StatusCode();
  const bool success = FLastStatus < kFirstFailure;
  if (success && FLastStatus != kNoContent && output != nullptr && Stream == nullptr) {
    DoReadResponseStream(*request, *output);
  }
  return success;
}

void THTTPConnection::SendRequest(HttpExchange& Request, StringView extraheaders, const void* data,
                                  std::size_t bytes) {
  const std::span body(static_cast<const std::byte*>(data), bytes);
  Send(Request, extraheaders, bytes != 0 ? std::make_unique<MemoryBody>(body) : nullptr);
}

void THTTPConnection::SendRequest(HttpExchange& Request, StringView extraheaders, TStream& body) {
  Send(Request, extraheaders, std::make_unique<StreamBody>(body));
}

void THTTPConnection::Send(HttpExchange& Request, StringView extraheaders,
                           std::unique_ptr<platform::HttpBody> body) {
  Check(Request.Send(extraheaders, std::move(body)));
}

void THTTPConnection::ReceiveResponse(HttpExchange& Request, TStream* Stream) {
  Check(Request.Receive());
  FLastStatus = Request.StatusCode();
  if (Stream != nullptr) DoReadResponseStream(Request, *Stream);
}

void THTTPConnection::ReadResponseStream(HttpExchange& Request, TStream& Stream) {
  const bool encoded = Request.Header(u"Content-Encoding").has_value();
  SizeLimit limit(encoded ? FMaxDecodedSize : std::numeric_limits<std::int64_t>::max());
  Check(Request.ReadBody([&](std::span<const std::byte> piece) {
    if (const SystemError error = limit.Take(piece.size())) return error;
    Stream.WriteBuffer(piece.data(), std::ssize(piece));
    return SystemError{0};
  }));
  Stream.SetPosition(0);
}

String THTTPConnection::ReadResponseString(HttpExchange& Request) {
  AnsiString bytes;
  SizeLimit limit(FMaxTextSize);
  Check(Request.ReadBody([&](std::span<const std::byte> piece) {
    bytes.append(reinterpret_cast<const char*>(piece.data()), piece.size());
    return limit.Take(piece.size());
  }));
  return ResponseText(bytes, Request.Header(u"Content-Type").value_or(StringView()));
}

void THTTPConnection::CloseHandle(THTTPHandle& AHandle) {
  AHandle.reset();
}

void THTTPConnection::DoReadResponseStream(HttpExchange& Request, TStream& Stream) {
  ReadResponseStream(Request, Stream);
}

void THTTPConnection::CallBack(std::uint32_t, const void*, std::uint32_t) {}

void THTTPConnection::Check(SystemError error) {
  if (error == 0) return;
  FLastError = error;
  RaiseHttpError(error);
}

std::unique_ptr<THTTPConnection> CreateConnectionFromUrl(StringView Url, String& path) {
  auto connection = std::make_unique<THTTPConnection>();
  connection->OpenConnectionFromUrl(Url, path);
  return connection;
}

}  // namespace zentavo
