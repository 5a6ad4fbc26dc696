// WebSocket channels: WinHTTP's own functions on Windows, Boost.Beast on Linux.
#pragma once

#include "zentavo/platform/http.h"

namespace zentavo::platform {

class ZENTAVO_API WebSocket {
 public:
  WebSocket(const WebSocket&) = delete;
  WebSocket& operator=(const WebSocket&) = delete;
  ~WebSocket();

 private:
  struct State;
  explicit WebSocket(std::unique_ptr<State> state);

  std::unique_ptr<State> state_;
};

}  // namespace zentavo::platform
