#include "zentavo/platform/web_socket.h"

#include "zentavo/http/connection.h"

namespace zentavo {

void THTTPConnection::CloseWebSocket() {
  FWebSocket.reset();
}

}  // namespace zentavo
