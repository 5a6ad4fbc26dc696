#include "zentavo/platform/web_socket.h"

namespace zentavo::platform {

struct WebSocket::State {};

WebSocket::WebSocket(std::unique_ptr<State> state) : state_(std::move(state)) {}
WebSocket::~WebSocket() = default;

}  // namespace zentavo::platform
