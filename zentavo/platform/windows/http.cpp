#include "zentavo/platform/http.h"

#include <algorithm>
#include <cwchar>
#include <vector>

#include "zentavo/platform/windows/http_state.h"
#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

constexpr std::size_t kPiece = 16384;        // bytes of a body read at once
constexpr std::size_t kSendPiece = 65536;    // bytes of a body sent at once
constexpr DWORD kOptionDecompression = 118;  // missing in older headers
constexpr DWORD kDecompressGzipAndDeflate = 3;
constexpr DWORD kProtocolTls13 = 0x2000;
constexpr std::uint64_t kLongestTotal = 0xFFFFFFFE;  // beyond, the size goes in a header

// The system's codes for the several ways in which TLS fails, and those of sockets, as one code
// each.
SystemError Uniform(SystemError error) {
  switch (error) {
    case ERROR_WINHTTP_SECURE_CHANNEL_ERROR:
    case ERROR_WINHTTP_SECURE_INVALID_CA:
    case ERROR_WINHTTP_SECURE_CERT_CN_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_DATE_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_REVOKED:
    case ERROR_WINHTTP_SECURE_INVALID_CERT:
    case ERROR_WINHTTP_SECURE_CERT_REV_FAILED:
    case ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE: return kHttpSecureFailure;
    case WSAECONNABORTED:
    case WSAECONNRESET:
    case WSAENOTCONN:
    case WSAESHUTDOWN: return kHttpConnectionError;
    case WSAETIMEDOUT: return kHttpTimeout;
    case ERROR_INSUFFICIENT_BUFFER: return kHttpInvalidResponse;  // of a chunk without a size
    default: return error;
  }
}

SystemError HttpErrorOf(BOOL result) {
  return result ? 0 : Uniform(GetLastError());
}

template <typename Handle>
std::unique_ptr<Handle> Fail(SystemError& error) {
  error = Uniform(GetLastError());
  return nullptr;
}

SystemError SetNumber(HINTERNET handle, DWORD option, DWORD value) {
  return HttpErrorOf(WinHttpSetOption(handle, option, &value, sizeof value));
}

// Older systems know no TLS 1.3 and refuse the whole set then.
SystemError RequireTls12(HINTERNET session) {
  constexpr DWORD kTls12 = WINHTTP_FLAG_SECURE_PROTOCOL_TLS1_2;
  if (SetNumber(session, WINHTTP_OPTION_SECURE_PROTOCOLS, kTls12 | kProtocolTls13) == 0) return 0;
  return SetNumber(session, WINHTTP_OPTION_SECURE_PROTOCOLS, kTls12);
}

void CALLBACK Forward(HINTERNET, DWORD_PTR context, DWORD status, void* info, DWORD length) {
  const auto* connection = reinterpret_cast<const HttpConnection::State*>(context);
  if (connection != nullptr && connection->callback) connection->callback(status, info, length);
}

}  // namespace

HttpBody::~HttpBody() = default;

HttpSession::HttpSession(std::shared_ptr<State> state) : state_(std::move(state)) {}
HttpSession::~HttpSession() = default;

std::shared_ptr<HttpSession> HttpSession::Open(const HttpSessionOptions& options,
                                               SystemError& error) {
  auto state = std::make_shared<State>();
  const wchar_t* agent = options.user_agent.empty() ? nullptr : AsWide(options.user_agent.c_str());
  state->handle = InternetHandle(WinHttpOpen(agent, WINHTTP_ACCESS_TYPE_DEFAULT_PROXY,
                                             WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, 0));
  if (!state->handle) return Fail<HttpSession>(error);
  error = RequireTls12(state->handle.get());
  if (error != 0) return nullptr;
  // A system without the option asks for no compression, so there is nothing to decode.
  state->decodes = options.decode && SetNumber(state->handle.get(), kOptionDecompression,
                                               kDecompressGzipAndDeflate) == 0;
  std::shared_ptr<HttpSession> session(new HttpSession(std::move(state)));
  error = session->SetTimeouts(options.timeouts);
  return error == 0 ? session : nullptr;
}

SystemError HttpSession::SetTimeouts(const HttpTimeouts& timeouts) {
  const HINTERNET handle = state_->handle.get();
  if (!WinHttpSetTimeouts(handle, std::max(timeouts.resolve_ms, 0),
                          std::max(timeouts.connect_ms, 0), std::max(timeouts.send_ms, 0),
                          std::max(timeouts.receive_ms, 0))) {
    return GetLastError();
  }
  const DWORD headers_ms = timeouts.receive_ms > 0 ? timeouts.receive_ms : INFINITE;
  return SetNumber(handle, WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT, headers_ms);
}

HttpConnection::HttpConnection(std::shared_ptr<State> state) : state_(std::move(state)) {}
HttpConnection::~HttpConnection() = default;

std::unique_ptr<HttpConnection> HttpConnection::Open(const std::shared_ptr<HttpSession>& session,
                                                     const HttpEndpoint& endpoint,
                                                     SystemError& error) {
  auto state = std::make_shared<State>();
  state->session = session->Native();
  state->endpoint = endpoint;
  state->handle = InternetHandle(WinHttpConnect(state->session->handle.get(),
                                                AsWide(endpoint.host.c_str()), endpoint.port, 0));
  if (!state->handle) return Fail<HttpConnection>(error);
  error = 0;
  return std::unique_ptr<HttpConnection>(new HttpConnection(std::move(state)));
}

SystemError HttpConnection::SetStatusCallback(std::uint32_t flags, StatusCallback callback) {
  const HINTERNET handle = state_->handle.get();
  state_->callback = std::move(callback);
  auto context = reinterpret_cast<DWORD_PTR>(state_.get());
  if (!WinHttpSetOption(handle, WINHTTP_OPTION_CONTEXT_VALUE, &context, sizeof context)) {
    return GetLastError();
  }
  return WinHttpSetStatusCallback(handle, Forward, flags, 0) != WINHTTP_INVALID_STATUS_CALLBACK
             ? 0
             : GetLastError();
}

HttpRequest::HttpRequest(std::unique_ptr<State> state) : state_(std::move(state)) {}
HttpRequest::~HttpRequest() = default;

std::unique_ptr<HttpRequest> HttpRequest::Open(const HttpConnection& connection,
                                               std::u16string_view path, std::u16string_view verb,
                                               SystemError& error) {
  auto state = std::make_unique<State>();
  state->connection = connection.Native();
  state->verb = verb;
  const DWORD flags = WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY |
                      (state->connection->endpoint.secure ? WINHTTP_FLAG_SECURE : 0);
  const HINTERNET handle = WinHttpOpenRequest(state->connection->handle.get(), ToWide(verb).c_str(),
                                              ToWide(path).c_str(), nullptr, WINHTTP_NO_REFERER,
                                              WINHTTP_DEFAULT_ACCEPT_TYPES, flags);
  if (handle == nullptr) return Fail<HttpRequest>(error);
  state->handle = InternetHandle(handle);
  error = SetNumber(handle, WINHTTP_OPTION_DISABLE_FEATURE, WINHTTP_DISABLE_REDIRECTS);
  if (error != 0) return nullptr;
  return std::unique_ptr<HttpRequest>(new HttpRequest(std::move(state)));
}

// Tells the service to go on without a certificate when that is what `error` asks for; then the
// failed step is to be made once more.
bool HttpRequest::State::RetryWithoutCertificate(SystemError error) const {
  return error == kHttpClientCertificateNeeded &&
         WinHttpSetOption(handle.get(), WINHTTP_OPTION_CLIENT_CERT_CONTEXT,
                          WINHTTP_NO_CLIENT_CERT_CONTEXT, 0);
}

SystemError HttpRequest::Send(std::u16string_view headers, HttpBody* body) {
  const SystemError error = state_->Send(headers, body);
  if (!state_->RetryWithoutCertificate(error)) return error;
  if (body != nullptr) body->Rewind();
  return state_->Send(headers, body);
}

SystemError HttpRequest::State::Send(std::u16string_view headers, HttpBody* body) const {
  const std::uint64_t size = body != nullptr ? body->Size() : 0;
  std::wstring lines = ToWide(headers);
  if (size > kLongestTotal) lines += L"Content-Length: " + std::to_wstring(size) + L"\r\n";
  std::vector<std::byte> piece(static_cast<std::size_t>(std::min<std::uint64_t>(size, kSendPiece)));
  std::uint64_t sent = size != 0 ? body->Read(piece) : 0;
  const auto total = static_cast<DWORD>(std::min<std::uint64_t>(size, kLongestTotal + 1));
  if (!WinHttpSendRequest(handle.get(), lines.empty() ? nullptr : lines.c_str(),
                          static_cast<DWORD>(lines.size()), piece.data(), static_cast<DWORD>(sent),
                          total, 0)) {
    return Uniform(GetLastError());
  }
  while (sent < size) {
    const std::size_t count = body->Read(piece);
    if (count == 0) return kHttpConnectionError;
    DWORD written = 0;
    if (!WinHttpWriteData(handle.get(), piece.data(), static_cast<DWORD>(count), &written)) {
      return Uniform(GetLastError());
    }
    sent += count;
  }
  return 0;
}

SystemError HttpRequest::Receive() {
  const auto receive = [this] {
    return HttpErrorOf(WinHttpReceiveResponse(state_->handle.get(), nullptr));
  };
  SystemError error = receive();
  if (state_->RetryWithoutCertificate(error)) error = receive();
  if (error != 0) return error;
  return RawHeaders().starts_with(u"HTTP/") ? 0 : kHttpInvalidResponse;
}

std::u16string HttpRequest::RawHeaders() const {
  const HINTERNET handle = state_->handle.get();
  DWORD bytes = 0;
  WinHttpQueryHeaders(handle, WINHTTP_QUERY_RAW_HEADERS_CRLF, nullptr, nullptr, &bytes, nullptr);
  if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return {};
  std::u16string text(bytes / sizeof(char16_t), u'\0');
  if (!WinHttpQueryHeaders(handle, WINHTTP_QUERY_RAW_HEADERS_CRLF, nullptr, text.data(), &bytes,
                           nullptr)) {
    return {};
  }
  text.resize(bytes / sizeof(char16_t));
  return text;
}

SystemError HttpRequest::ReadBody(const BodySink& sink) {
  const HINTERNET handle = state_->handle.get();
  std::vector<std::byte> buffer(kPiece);
  for (std::uint64_t received = 0;;) {
    DWORD available = 0;
    DWORD count = 0;
    if (!WinHttpQueryDataAvailable(handle, &available)) return Uniform(GetLastError());
    const DWORD wanted = std::min<DWORD>(available, static_cast<DWORD>(buffer.size()));
    if (wanted != 0 && !WinHttpReadData(handle, buffer.data(), wanted, &count)) {
      return Uniform(GetLastError());
    }
    if (count == 0) return received < state_->ExpectedSize() ? kHttpConnectionError : 0;
    if (const SystemError error = sink(std::span(buffer).first(count))) return error;
    received += count;
  }
}

// A decoded body has another size than its header says, and the service itself minds its end.
std::uint64_t HttpRequest::State::ExpectedSize() const {
  if (connection->session->decodes || verb == u"HEAD") return 0;
  wchar_t text[32];
  DWORD bytes = sizeof text;
  return WinHttpQueryHeaders(handle.get(), WINHTTP_QUERY_CONTENT_LENGTH, nullptr, text, &bytes,
                             nullptr)
             ? std::wcstoull(text, nullptr, 10)
             : 0;
}

}  // namespace zentavo::platform
