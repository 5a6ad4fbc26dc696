// Stream sockets on loopback, for servers that the tests run themselves.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace zentavo::testing {

#ifdef _WIN32
using SystemSocket = SOCKET;
using TransferSize = int;
inline constexpr SystemSocket kNoSocket = INVALID_SOCKET;
inline constexpr int kShutSend = SD_SEND;
inline constexpr int kSendFlags = 0;
inline void CloseSystemSocket(SystemSocket socket) {
  closesocket(socket);
}
inline constexpr bool kOnWindows = true;
inline void StartSockets() {
  static const int started = [] {
    WSADATA data;
    return WSAStartup(MAKEWORD(2, 2), &data);
  }();
  static_cast<void>(started);
}
#else
using SystemSocket = int;
using TransferSize = std::size_t;
inline constexpr SystemSocket kNoSocket = -1;
inline constexpr int kShutSend = SHUT_WR;
inline constexpr int kSendFlags = MSG_NOSIGNAL;
inline void CloseSystemSocket(SystemSocket socket) {
  close(socket);
}
inline constexpr bool kOnWindows = false;
inline void StartSockets() {}
#endif

// Movable; closes when destroyed.
class Socket {
 public:
  Socket() = default;
  explicit Socket(SystemSocket socket) : socket_(socket) {}
  Socket(Socket&& other) noexcept : socket_(std::exchange(other.socket_, kNoSocket)) {}
  Socket& operator=(Socket&& other) noexcept {
    std::swap(socket_, other.socket_);
    return *this;
  }
  ~Socket() { Close(); }

  SystemSocket get() const { return socket_; }
  bool IsOpen() const { return socket_ != kNoSocket; }
  void Close() {
    if (IsOpen()) CloseSystemSocket(std::exchange(socket_, kNoSocket));
  }
  void Shutdown(int how) const { shutdown(socket_, how); }

  // False when the other side has gone.
  bool Send(std::string_view bytes) const {
    while (!bytes.empty()) {
      const auto piece = static_cast<TransferSize>(std::min<std::size_t>(bytes.size(), 1 << 20));
      const auto count = send(socket_, bytes.data(), piece, kSendFlags);
      if (count <= 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }
  // What has arrived, waiting for it; empty at the end.
  std::string Receive() const {
    std::string buffer(65536, '\0');
    const auto count = recv(socket_, buffer.data(), static_cast<TransferSize>(buffer.size()), 0);
    buffer.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return buffer;
  }
  // Has the other side see a reset when it closes.
  void ResetAtClose() const {
    linger at_once{};
    at_once.l_onoff = 1;
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&at_once),
               sizeof at_once);
  }
  // Whether bytes, the end or an error have arrived within ten milliseconds. A thread that waits in
  // Receive cannot be woken everywhere.
  bool HasArrivals() const {
    fd_set waiting;
    FD_ZERO(&waiting);
    FD_SET(socket_, &waiting);
    timeval look{0, 10'000};
    return select(static_cast<int>(socket_) + 1, &waiting, nullptr, nullptr, &look) != 0;
  }

 private:
  SystemSocket socket_ = kNoSocket;
};

// 127.0.0.1 or ::1, with a port.
union LoopbackAddress {
  explicit LoopbackAddress(int family, std::uint16_t port = 0) : v6{} {
    if (family == AF_INET6) {
      v6.sin6_port = htons(port);
      v6.sin6_addr.s6_addr[15] = 1;
    } else {
      v4.sin_port = htons(port);
      v4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    }
    any.sa_family = static_cast<decltype(any.sa_family)>(family);
  }
  socklen_t Size() const { return any.sa_family == AF_INET6 ? sizeof v6 : sizeof v4; }

  sockaddr any;
  sockaddr_in v4;
  sockaddr_in6 v6;
};

// A listener on a free port of 127.0.0.1, or of ::1.
class Listener {
 public:
  explicit Listener(int family = AF_INET) {
    StartSockets();
    socket_ = Socket(socket(family, SOCK_STREAM, 0));
    LoopbackAddress address(family);
    socklen_t size = address.Size();
    if (bind(socket_.get(), &address.any, size) == 0 && listen(socket_.get(), 64) == 0) {
      getsockname(socket_.get(), &address.any, &size);
      port_ = ntohs(family == AF_INET6 ? address.v6.sin6_port : address.v4.sin_port);
    }
  }

  std::uint16_t Port() const { return port_; }  // 0: the system has no such family
  Socket Accept() const {
    Socket accepted(accept(socket_.get(), nullptr, nullptr));
    const int at_once = 1;
    setsockopt(accepted.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&at_once),
               sizeof at_once);
    return accepted;
  }
  void Close() { socket_.Close(); }

 private:
  Socket socket_;
  std::uint16_t port_ = 0;
};

inline Socket ConnectTo(std::uint16_t port, int family = AF_INET) {
  StartSockets();
  Socket result(socket(family, SOCK_STREAM, 0));
  const LoopbackAddress address(family, port);
  if (connect(result.get(), &address.any, address.Size()) != 0) result.Close();
  return result;
}

}  // namespace zentavo::testing
