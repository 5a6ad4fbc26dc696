// The open but idle connections to servers that no HttpConnection holds at the moment. A new one to
// the same server takes them over, so that one-shot requests need no new connection each.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "zentavo/platform/linux/http_state.h"

namespace zentavo::platform {

// A client holds its connections; a new one holds none. May be used from any thread.
class IdleClients {
 public:
  // The process's own. The first call initialises libcurl; at exit the connections close before the
  // libraries below it end, and none is kept any more.
  static IdleClients& Instance();

  // An idle client of `session` for the server `origin`, or a new one.
  CurlMulti Take(const void* session, const std::string& origin);
  // Keeps `client` for Take; the one that is idle longest is closed when they are too many.
  void Give(const void* session, const std::string& origin, CurlMulti client);
  // Closes those of `session`.
  void Drop(const void* session);

 private:
  static constexpr std::size_t kMost = 16;
  struct Idle {
    const void* session;
    std::string origin;
    CurlMulti client;
  };

  IdleClients() = default;
  void Close();

  std::mutex mutex_;        // guards what follows
  std::vector<Idle> idle_;  // longest idle first
  bool closed_ = false;
};

}  // namespace zentavo::platform
