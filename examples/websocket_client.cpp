// Sends a text to a WebSocket server and prints what comes back.
//
//   websocket_client ws://127.0.0.1:8080/echo
#include <iostream>
#include <string>

#include "zentavo/foundation/errors.h"
#include "zentavo/http/web_socket_connection.h"

namespace {

using namespace zentavo;

std::string TextOf(const TMemoryStream& stream) {
  const auto bytes = stream.Bytes();
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void Talk(StringView url) {
  TWebSocketConnection channel;
  channel.SetTimeouts(5000, 5000);
  TMemoryStream answer;
  if (channel.Open(url) && channel.SendMsg(AnsiString("hello")) && channel.ReceiveMsg(answer)) {
    std::cout << TextOf(answer) << '\n';
  } else if (channel.LastError() == 0) {
    std::cout << "The server closed: " << channel.CloseStatus() << ' '
              << ToUtf8(channel.CloseReason()) << '\n';
  } else {
    std::cout << "No answer: error " << channel.LastError() << '\n';
  }
  channel.Close();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Talk(FromUtf8(argc > 1 ? argv[1] : "ws://127.0.0.1:1/nobody-listens-here"));
  } catch (const EZentavoError& error) {
    std::cout << error.what() << '\n';
  }
  return 0;
}
