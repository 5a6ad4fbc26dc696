#include "zentavo/platform/http.h"

#include <cstdlib>
#include <utility>

#include "zentavo/platform/linux/http_state.h"
#include "zentavo/platform/linux/idle_clients.h"
#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

const char* Setting(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : nullptr;
}

std::string OriginOf(const HttpEndpoint& endpoint) {
  const std::string host = PathBytes(endpoint.host);
  const bool bare_ipv6 = host.find(':') != host.npos && !host.starts_with('[');
  return (endpoint.secure ? "https://" : "http://") + (bare_ipv6 ? "[" + host + "]" : host) + ":" +
         std::to_string(endpoint.port);
}

}  // namespace

CertificateStore TrustedCertificates() {
  return {Setting("SSL_CERT_FILE"), Setting("SSL_CERT_DIR")};
}

CookieJar::CookieJar() : share_(curl_share_init()) {
  curl_share_setopt(share_, CURLSHOPT_LOCKFUNC, Lock);
  curl_share_setopt(share_, CURLSHOPT_UNLOCKFUNC, Unlock);
  curl_share_setopt(share_, CURLSHOPT_USERDATA, this);
  curl_share_setopt(share_, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
}

CookieJar::~CookieJar() {
  curl_share_cleanup(share_);
}

void CookieJar::Lock(CURL*, curl_lock_data, curl_lock_access, void* jar) {
  static_cast<CookieJar*>(jar)->mutex_.lock();
}

void CookieJar::Unlock(CURL*, curl_lock_data, void* jar) {
  static_cast<CookieJar*>(jar)->mutex_.unlock();
}

HttpSession::State::State(const HttpSessionOptions& options)
    : user_agent(PathBytes(options.user_agent)),
      decode(options.decode),
      timeouts(options.timeouts) {}

HttpSession::State::~State() {
  IdleClients::Instance().Drop(this);
}

HttpTimeouts HttpSession::State::Timeouts() const {
  const std::lock_guard lock(mutex);
  return timeouts;
}

HttpSession::HttpSession(std::shared_ptr<State> state) : state_(std::move(state)) {}
HttpSession::~HttpSession() = default;

std::shared_ptr<HttpSession> HttpSession::Open(const HttpSessionOptions& options,
                                               SystemError& error) {
  IdleClients::Instance();
  error = 0;
  return std::shared_ptr<HttpSession>(new HttpSession(std::make_shared<State>(options)));
}

SystemError HttpSession::SetTimeouts(const HttpTimeouts& timeouts) {
  const std::lock_guard lock(state_->mutex);
  state_->timeouts = timeouts;
  return 0;
}

HttpConnection::State::State(std::shared_ptr<HttpSession::State> of_session,
                             const HttpEndpoint& server)
    : session(std::move(of_session)),
      endpoint(server),
      origin(OriginOf(server)),
      multi(IdleClients::Instance().Take(session.get(), origin)) {}

HttpConnection::State::~State() {
  if (multi) IdleClients::Instance().Give(session.get(), origin, std::move(multi));
}

HttpConnection::HttpConnection(std::shared_ptr<State> state) : state_(std::move(state)) {}
HttpConnection::~HttpConnection() = default;

std::unique_ptr<HttpConnection> HttpConnection::Open(const std::shared_ptr<HttpSession>& session,
                                                     const HttpEndpoint& endpoint,
                                                     SystemError& error) {
  auto state = std::make_shared<State>(session->Native(), endpoint);
  error = state->multi ? 0 : kHttpInternalError;
  if (error != 0) return nullptr;
  return std::unique_ptr<HttpConnection>(new HttpConnection(std::move(state)));
}

SystemError HttpConnection::SetStatusCallback(std::uint32_t flags, StatusCallback callback) {
  state_->callback = std::move(callback);
  state_->flags = state_->callback ? flags : 0;
  return 0;
}

}  // namespace zentavo::platform
