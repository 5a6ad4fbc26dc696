// One exchange on libcurl. The connection's client drives all requests of the connection at once;
// what arrives for a request that nobody reads yet waits in it, up to a bound, and then in the
// server.
#pragma once

#include <array>
#include <chrono>
#include <string>
#include <vector>

#include "zentavo/platform/linux/http_state.h"

namespace zentavo::platform {

struct CurlListCloser {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlList = std::unique_ptr<curl_slist, CurlListCloser>;

struct HttpRequest::State {
  State(std::shared_ptr<HttpConnection::State> connection, std::string path, std::string verb);
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  const std::shared_ptr<HttpConnection::State> connection;
  const std::string path;
  const std::string verb;
  const HttpTimeouts timeouts;
  bool web_socket = false;  // the handshake is not made by this exchange
};

}  // namespace zentavo::platform
