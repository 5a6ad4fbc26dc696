// An HTTP server on loopback whose every byte the test decides.
//
//   HttpServer server(Always(Response("hello")));
//   THTTPRequest::DoExecute(server.Url(u"/greeting"), u"");
//   server.Requests().front().line;   // "GET /greeting HTTP/1.1"
#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/sockets.h"

namespace zentavo::testing {

struct ReceivedRequest {
  std::string line;
  std::string headers;  // lines ended by CR LF
  std::string body;
  int connection = 0;  // counts from 0

  // Empty when absent.
  std::string Header(std::string_view name) const {
    const std::string wanted = "\r\n" + Lower(name) + ": ";
    const std::string lines = "\r\n" + headers;
    const std::size_t found = Lower(lines).find(wanted);
    if (found == std::string::npos) return {};
    const std::size_t start = found + wanted.size();
    return lines.substr(start, lines.find("\r\n", start) - start);
  }

 private:
  static std::string Lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower;
  }
};

// The server's end of one connection, as long as `stopping` is false.
class HttpPeer {
 public:
  HttpPeer(Socket socket, int number, const std::atomic<bool>& stopping)
      : socket_(std::move(socket)), number_(number), stopping_(stopping) {}

  const Socket& Channel() const { return socket_; }

  // The next request without its body; nothing when the client has gone.
  std::optional<ReceivedRequest> ReadHead() {
    std::size_t end = 0;
    while ((end = pending_.find("\r\n\r\n")) == std::string::npos) {
      if (!Fill()) return std::nullopt;
    }
    const std::string head = Take(end + 4);
    const std::size_t line_end = head.find("\r\n");
    return ReceivedRequest{
        head.substr(0, line_end), head.substr(line_end + 2, end - line_end), {}, number_};
  }
  // With its body; the client sends no chunks.
  std::optional<ReceivedRequest> Read() {
    std::optional<ReceivedRequest> request = ReadHead();
    if (!request) return std::nullopt;
    const std::string length = request->Header("Content-Length");
    const std::size_t size = length.empty() ? 0 : static_cast<std::size_t>(std::stoull(length));
    request->body = Take(size);
    return request->body.size() == size ? request : std::nullopt;
  }
  // The next `size` bytes, fewer when the client goes.
  std::string Take(std::size_t size) {
    while (pending_.size() < size && Fill()) {
    }
    std::string taken = pending_.substr(0, size);
    pending_.erase(0, taken.size());
    return taken;
  }
  bool Send(std::string_view bytes) { return !stopping_ && socket_.Send(bytes); }
  // Waits until the client closes.
  void AwaitEnd() {
    while (Fill()) pending_.clear();
  }

 private:
  bool Fill() {
    while (!socket_.HasArrivals()) {
      if (stopping_) return false;
    }
    const std::string bytes = socket_.Receive();
    pending_ += bytes;
    return !bytes.empty();
  }

  const Socket socket_;
  const int number_;
  const std::atomic<bool>& stopping_;
  std::string pending_;
};

inline std::string Response(std::string_view body, std::string_view headers = {},
                            std::string_view status = "200 OK") {
  return "HTTP/1.1 " + std::string(status) + "\r\n" + std::string(headers) +
         "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + std::string(body);
}

enum class Connections { kTogether, kOneByOne };

class HttpServer {
 public:
  // What happens on one connection; it is closed afterwards. May record a request.
  using Script = std::function<void(HttpServer& server, HttpPeer& peer)>;

  explicit HttpServer(Script script, int family = AF_INET,
                      Connections connections = Connections::kTogether)
      : script_(std::move(script)), listener_(family), family_(family), connections_(connections) {
    if (Port() != 0) acceptor_ = std::thread([this] { AcceptAll(); });
  }
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;
  ~HttpServer() { Stop(); }

  // Ends all connections and answers no new ones.
  void Stop() {
    if (!acceptor_.joinable()) return;
    stopping_ = true;
    ConnectTo(Port(), family_);
    acceptor_.join();
    for (std::thread& thread : threads_) thread.join();
    listener_.Close();
  }

  std::uint16_t Port() const { return listener_.Port(); }
  std::u16string Url(std::u16string_view path = u"/") const {
    const std::string port = std::to_string(Port());
    return (family_ == AF_INET6 ? u"http://[::1]:" : u"http://127.0.0.1:") +
           std::u16string(port.begin(), port.end()) + std::u16string(path);
  }

  void Record(const ReceivedRequest& request) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(request);
  }
  std::vector<ReceivedRequest> Requests() {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

 private:
  void AcceptAll() {
    for (int number = 0;; ++number) {
      const auto peer = std::make_shared<HttpPeer>(listener_.Accept(), number, stopping_);
      if (stopping_) return;
      if (connections_ == Connections::kOneByOne) {
        script_(*this, *peer);
      } else {
        threads_.emplace_back([this, peer] { script_(*this, *peer); });
      }
    }
  }

  const Script script_;
  Listener listener_;
  const int family_;
  const Connections connections_;
  std::atomic<bool> stopping_{false};
  std::mutex mutex_;  // guards `requests_`
  std::vector<ReceivedRequest> requests_;
  std::list<std::thread> threads_;  // the acceptor's, until that has ended
  std::thread acceptor_;
};

// Answers every request, after recording it, with what `answer` makes of it; an empty answer ends
// the connection.
inline HttpServer::Script Answering(std::function<std::string(const ReceivedRequest&)> answer) {
  return [answer = std::move(answer)](HttpServer& server, HttpPeer& peer) {
    while (const std::optional<ReceivedRequest> request = peer.Read()) {
      server.Record(*request);
      const std::string bytes = answer(*request);
      if (bytes.empty() || !peer.Send(bytes)) return;
    }
  };
}

inline HttpServer::Script Always(std::string bytes) {
  return Answering([bytes = std::move(bytes)](const ReceivedRequest&) { return bytes; });
}

// Sends the bytes once, behind the first request, and closes.
inline HttpServer::Script Once(std::string bytes) {
  return [bytes = std::move(bytes)](HttpServer& server, HttpPeer& peer) {
    if (const std::optional<ReceivedRequest> request = peer.Read()) {
      server.Record(*request);
      peer.Send(bytes);
      peer.Channel().Shutdown(kShutSend);
      peer.AwaitEnd();
    }
  };
}

}  // namespace zentavo::testing
