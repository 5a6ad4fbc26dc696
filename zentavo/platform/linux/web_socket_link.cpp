#include "zentavo/platform/linux/web_socket_link.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "zentavo/platform/linux/cookie_header.h"
#include "zentavo/platform/linux/http_errors.h"
#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

using Clock = WebSocketLink::Clock;

Clock::time_point After(std::int32_t timeout_ms) {
  if (timeout_ms <= 0) return Clock::time_point::max();
  return Clock::now() + std::chrono::milliseconds(timeout_ms);
}

// Rounded up, so that a wait does not end just before its deadline; -1: without end.
int MillisecondsUntil(Clock::time_point deadline) {
  if (deadline == Clock::time_point::max()) return -1;
  if (deadline == Clock::time_point::min()) return 0;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
  return static_cast<int>(std::clamp<std::int64_t>(left, 0, 0x7FFFFFFF));
}

std::string LowerCase(std::string text) {
  for (char& byte : text) {
    if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte + ('a' - 'A'));
  }
  return text;
}

bool SetBlocking(int socket) {
  const int flags = fcntl(socket, F_GETFL);
  return flags != -1 && fcntl(socket, F_SETFL, flags & ~O_NONBLOCK) == 0;
}

// 0 and below: without end.
bool SetTimeout(int socket, int option, std::int32_t timeout_ms) {
  timeval timeout{};
  if (timeout_ms > 0) timeout = {timeout_ms / 1000, timeout_ms % 1000 * 1000L};
  return setsockopt(socket, SOL_SOCKET, option, &timeout, sizeof timeout) == 0;
}

// The count that a blocking call transfers, at least one, or 0 with an error.
template <typename Call>
std::size_t Transferred(Call call, SystemError& error) {
  ssize_t count = 0;
  do {
    count = call();
  } while (count == -1 && errno == EINTR);
  const bool timed_out = count == -1 && (errno == EAGAIN || errno == EWOULDBLOCK);
  error = count > 0 ? 0 : timed_out ? kHttpTimeout : kHttpConnectionError;
  return count > 0 ? static_cast<std::size_t>(count) : 0;
}

// As much of the beginning of `pieces` as `buffer` holds.
iovec Joined(std::span<const iovec> pieces, std::span<char> buffer) {
  std::size_t size = 0;
  for (const iovec& piece : pieces) {
    const std::size_t count = std::min(piece.iov_len, buffer.size() - size);
    std::memcpy(buffer.data() + size, piece.iov_base, count);
    size += count;
  }
  return {buffer.data(), size};
}

}  // namespace

WebSocketLink::WebSocketLink(const HttpConnection::State& connection)
    : origin_(connection.origin),
      host_(LowerCase(PathBytes(connection.endpoint.host))),
      secure_(connection.endpoint.secure),
      timeouts_(connection.session->Timeouts()),
      easy_(NewEasy(connection)) {}

WebSocketLink::~WebSocketLink() = default;

std::string WebSocketLink::Cookies(std::string_view path) const {
  return CookieHeader(easy_.get(), host_, path, secure_);
}

void WebSocketLink::StartReading(std::int32_t timeout_ms) {
  read_deadline_ = After(timeout_ms);
  deadline_is_far_ = timeout_ms == timeouts_.receive_ms;
}

void WebSocketLink::StopReading() {
  read_deadline_ = Clock::time_point::min();
  deadline_is_far_ = false;
}

// A plain connection is read and written by the system's calls alone: they block, for the time-outs
// at most, which costs half of asking first.
void WebSocketLink::TakeSocketOver() {
  long tunnel = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_HTTP_CONNECTCODE, &tunnel);
  plain_ = !secure_ && tunnel == 0 && SetBlocking(socket_) &&
           SetTimeout(socket_, SO_RCVTIMEO, timeouts_.receive_ms) &&
           SetTimeout(socket_, SO_SNDTIMEO, timeouts_.send_ms);
}

SystemError WebSocketLink::WaitFor(short events, Clock::time_point deadline) const {
  pollfd waiting{socket_, events, 0};
  for (;;) {
    const int ready = poll(&waiting, 1, MillisecondsUntil(deadline));
    if (ready > 0) return 0;
    if (ready == 0) return kHttpTimeout;
    if (errno != EINTR) return kHttpConnectionError;
  }
}

std::size_t WebSocketLink::Read(void* buffer, std::size_t size, SystemError& error) {
  error = 0;
  if (size == 0) return 0;
  return plain_ ? ReadPlain(buffer, size, error) : ReadByCurl(buffer, size, error);
}

std::size_t WebSocketLink::Write(std::span<const iovec> pieces, SystemError& error) {
  return plain_ ? WritePlain(pieces, error) : WriteByCurl(pieces, error);
}

// Only the first read behind StartReading may wait as long as the socket does.
std::size_t WebSocketLink::ReadPlain(void* buffer, std::size_t size, SystemError& error) {
  error = std::exchange(deadline_is_far_, false) ? 0 : WaitFor(POLLIN, read_deadline_);
  if (error != 0) return 0;
  return Transferred([&] { return recv(socket_, buffer, size, 0); }, error);
}

std::size_t WebSocketLink::WritePlain(std::span<const iovec> pieces, SystemError& error) const {
  msghdr message{};
  message.msg_iov = const_cast<iovec*>(pieces.data());
  message.msg_iovlen = pieces.size();
  return Transferred([&] { return sendmsg(socket_, &message, MSG_NOSIGNAL); }, error);
}

// CURLE_OK is the end of the connection.
SystemError WebSocketLink::Broken(CURLcode code) const {
  return code == CURLE_OK ? kHttpConnectionError : HttpErrorOf(code, error_text_.data());
}

std::size_t WebSocketLink::ReadByCurl(void* buffer, std::size_t size, SystemError& error) const {
  error = 0;
  while (error == 0) {
    std::size_t count = 0;
    const CURLcode code = curl_easy_recv(easy_.get(), buffer, size, &count);
    if (code == CURLE_OK && count > 0) return count;
    error = code == CURLE_AGAIN ? WaitFor(POLLIN, read_deadline_) : Broken(code);
  }
  return 0;
}

// A frame's head goes with the beginning of its content: alone it would be a packet of its own.
std::size_t WebSocketLink::WriteByCurl(std::span<const iovec> pieces, SystemError& error) const {
  std::array<char, 4096> together;
  iovec next = pieces.front();
  if (next.iov_len < together.size()) next = Joined(pieces, together);
  error = 0;
  while (error == 0) {
    std::size_t count = 0;
    const CURLcode code = curl_easy_send(easy_.get(), next.iov_base, next.iov_len, &count);
    if (code == CURLE_OK && count > 0) return count;
    const bool is_full = code == CURLE_OK || code == CURLE_AGAIN;
    error = is_full ? WaitFor(POLLOUT, After(timeouts_.send_ms)) : Broken(code);
  }
  return 0;
}

void WebSocketLink::EndWriting() {
  if (!secure_) shutdown(socket_, SHUT_WR);
}

}  // namespace zentavo::platform
