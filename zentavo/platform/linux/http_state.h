// What stands behind the HTTP handles, for the other users of a connection within this folder.
#pragma once

#include <curl/curl.h>

#include <exception>
#include <mutex>
#include <string>
#include <vector>

#include "zentavo/platform/http.h"

namespace zentavo::platform {

struct CurlMultiCloser {
  void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
using CurlMulti = std::unique_ptr<CURLM, CurlMultiCloser>;

struct CurlEasyCloser {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
using CurlEasy = std::unique_ptr<CURL, CurlEasyCloser>;

// The session's cookies, for all its connections.
class CookieJar {
 public:
  CookieJar();
  CookieJar(const CookieJar&) = delete;
  CookieJar& operator=(const CookieJar&) = delete;
  ~CookieJar();

  CURLSH* get() const { return share_; }

 private:
  static void Lock(CURL*, curl_lock_data, curl_lock_access, void* jar);
  static void Unlock(CURL*, curl_lock_data, void* jar);

  std::mutex mutex_;
  CURLSH* share_;
};

struct HttpSession::State {
  explicit State(const HttpSessionOptions& options);
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  HttpTimeouts Timeouts() const;

  const std::string user_agent;
  const bool decode;
  mutable std::mutex mutex;  // guards `timeouts`
  HttpTimeouts timeouts;
  CookieJar cookies;
};

struct HttpConnection::State {
  State(std::shared_ptr<HttpSession::State> of_session, const HttpEndpoint& server);
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  void Notify(std::uint32_t status, const void* info = nullptr, std::uint32_t length = 0) const {
    if ((flags & status) != 0) callback(status, info, length);
  }

  const std::shared_ptr<HttpSession::State> session;
  const HttpEndpoint endpoint;
  const std::string origin;  // scheme://host:port
  CurlMulti multi;           // holds the open connections
  CurlEasy spare;            // of the last request, for the next one
  std::uint32_t flags = 0;
  StatusCallback callback;
};

// Where the system's trusted certificates are, when the environment says otherwise than the build
// (SSL_CERT_FILE, SSL_CERT_DIR).
struct CertificateStore {
  const char* file;    // null: the built-in place
  const char* folder;  // likewise
};
CertificateStore TrustedCertificates();

}  // namespace zentavo::platform
