// Answers requests with any bytes, over a real connection: each ends in an answer or in one of the
// errors of an exchange. Redirects lead nowhere but to the same server.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <string>

#include "tests/support/http_server.h"
#include "zentavo/foundation/errors.h"
#include "zentavo/http/request.h"

namespace {

// The server answers with what the fuzzer has set last.
class Answers {
 public:
  void Set(std::string bytes) {
    const std::lock_guard lock(mutex_);
    bytes_ = std::move(bytes);
  }
  std::string Get() {
    const std::lock_guard lock(mutex_);
    return bytes_;
  }

 private:
  std::mutex mutex_;  // guards `bytes_`
  std::string bytes_;
};

// Serves one connection after another, on one thread.
class Server {
 public:
  explicit Server(Answers& answers) : thread_([&answers, this] { Serve(answers); }) {
    thread_.detach();
  }
  std::uint16_t Port() const { return listener_.Port(); }

 private:
  void Serve(Answers& answers) {
    const std::atomic<bool> never{false};
    for (;;) {
      zentavo::testing::HttpPeer peer(listener_.Accept(), 0, never);
      if (peer.Read()) peer.Send(answers.Get());
    }
  }

  zentavo::testing::Listener listener_;
  std::thread thread_;
};

// An answer that leads to another host would leave this computer.
bool LeadsAway(std::string_view bytes) {
  std::string lower(bytes);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return lower.find("location") != std::string::npos && lower.find("//") != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Answers answers;
  static Server& server = *new Server(answers);
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (LeadsAway(bytes)) return 0;
  answers.Set(bytes);
  static zentavo::THTTPConnection& connection = *new zentavo::THTTPConnection(true);
  connection.OpenConnection(u"127.0.0.1", false, server.Port());
  connection.SetTimeouts(2000, 2000);
  connection.SetMaxTextSize(1 << 20);
  zentavo::THTTPRequest request(connection, u"/");
  try {
    request.Execute(u"");
    request.GetHeader(1);
    request.GetHTTPStatusCode();
  } catch (const zentavo::EZentavoExtError& error) {
    if (error.ErrorId() < 12000 || error.ErrorId() == 12002) std::abort();
  }
  return 0;
}
