#include <array>

#include "zentavo/platform/linux/http_errors.h"
#include "zentavo/platform/linux/web_socket_link.h"

namespace zentavo::platform {

namespace {

void TrustSystemStore(CURL* easy) {
  const CertificateStore store = TrustedCertificates();
  if (store.file != nullptr) curl_easy_setopt(easy, CURLOPT_CAINFO, store.file);
  if (store.folder != nullptr) curl_easy_setopt(easy, CURLOPT_CAPATH, store.folder);
  curl_easy_setopt(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
}

}  // namespace

// A proxy is asked for a tunnel, also by a plain connection: it need not know WebSockets.
SystemError WebSocketLink::Connect() {
  CURL* const easy = easy_.get();
  if (easy == nullptr) return kHttpInternalError;
  curl_easy_setopt(easy, CURLOPT_URL, origin_.c_str());
  curl_easy_setopt(easy, CURLOPT_CONNECT_ONLY, 1L);
  curl_easy_setopt(easy, CURLOPT_HTTPPROXYTUNNEL, 1L);
  curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);  // a slow name server does not hold up a time-out
  if (timeouts_.connect_ms > 0) {
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeouts_.connect_ms));
  }
  TrustSystemStore(easy);
  std::array<char, CURL_ERROR_SIZE> text{};
  curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, text.data());
  const CURLcode result = curl_easy_perform(easy);
  curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, nullptr);
  if (result != CURLE_OK) return HttpErrorOf(result, text.data());
  curl_socket_t socket = CURL_SOCKET_BAD;
  curl_easy_getinfo(easy, CURLINFO_ACTIVESOCKET, &socket);
  if (socket == CURL_SOCKET_BAD) return kHttpConnectionError;
  socket_ = socket;
  TakeSocketOver();
  return 0;
}

}  // namespace zentavo::platform
