// The connection under a WebSocket: made by libcurl, so that proxies, TLS and addresses are those
// of HTTP requests, and then read and written with deadlines.
#pragma once

#include <sys/uio.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <span>

#include "zentavo/platform/linux/http_request.h"

namespace zentavo::platform {

class WebSocketLink {
 public:
  using Clock = std::chrono::steady_clock;

  explicit WebSocketLink(const HttpConnection::State& connection);
  WebSocketLink(const WebSocketLink&) = delete;
  WebSocketLink& operator=(const WebSocketLink&) = delete;
  ~WebSocketLink();

  // Connects, through the proxy if there is one, and shakes hands for TLS.
  SystemError Connect();

  // The value of the Cookie header for `path`, empty without cookies.
  std::string Cookies(std::string_view path) const;

  // Reading ends `timeout_ms` from now at the latest; 0 and below: never.
  void StartReading(std::int32_t timeout_ms);
  // Reading ends when nothing is there.
  void StopReading();
  // Transfer at least one byte. Return the count, or 0 with an error: kHttpTimeout,
  // kHttpConnectionError, or kHttpSecureFailure.
  std::size_t Read(void* buffer, std::size_t size, SystemError& error);
  // `pieces` in their order, together where the system can.
  std::size_t Write(std::span<const iovec> pieces, SystemError& error);
  // Tells the peer that no more will be written.
  void EndWriting();

  const HttpTimeouts& Timeouts() const { return timeouts_; }

 private:
  void TakeSocketOver();
  SystemError WaitFor(short events, Clock::time_point deadline) const;
  SystemError Broken(CURLcode code) const;
  std::size_t ReadPlain(void* buffer, std::size_t size, SystemError& error);
  std::size_t WritePlain(std::span<const iovec> pieces, SystemError& error) const;
  std::size_t ReadByCurl(void* buffer, std::size_t size, SystemError& error) const;
  std::size_t WriteByCurl(std::span<const iovec> pieces, SystemError& error) const;

  const std::string origin_;
  const std::string host_;  // as cookies name it, in lower case
  const bool secure_;
  const HttpTimeouts timeouts_;
  CurlEasy easy_;  // writes its errors' text below
  std::array<char, CURL_ERROR_SIZE> error_text_{};
  int socket_ = -1;
  bool plain_ = false;  // nothing stands between us and the socket, which then blocks
  Clock::time_point read_deadline_;
  bool deadline_is_far_ = false;  // as far as a blocking read waits at most
};

}  // namespace zentavo::platform
