#include "zentavo/platform/linux/http_errors.h"
#include "zentavo/platform/linux/web_socket_link.h"

namespace zentavo::platform {

// A proxy is asked for a tunnel, also by a plain connection: it need not know WebSockets.
SystemError WebSocketLink::Connect() {
  CURL* const easy = easy_.get();
  if (easy == nullptr) return kHttpInternalError;
  const auto set = [&](auto option, auto value) { curl_easy_setopt(easy, option, value); };
  set(CURLOPT_URL, origin_.c_str());
  set(CURLOPT_CONNECT_ONLY, 1L);
  set(CURLOPT_HTTPPROXYTUNNEL, 1L);
  set(CURLOPT_ERRORBUFFER, error_text_.data());
  if (timeouts_.connect_ms > 0) {
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(timeouts_.connect_ms));
  }
  if (const CURLcode result = curl_easy_perform(easy); result != CURLE_OK) {
    return HttpErrorOf(result, error_text_.data());
  }
  curl_socket_t socket = CURL_SOCKET_BAD;
  curl_easy_getinfo(easy, CURLINFO_ACTIVESOCKET, &socket);
  if (socket == CURL_SOCKET_BAD) return kHttpConnectionError;
  socket_ = socket;
  TakeSocketOver();
  return 0;
}

}  // namespace zentavo::platform
