// Any bytes as what a server sends behind its handshake, or instead of one: the outcome is messages
// and then an error or a close, within the limits.
//
// The first byte chooses whether the handshake is accepted properly; the server sends the rest and
// ends the connection.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/support/web_socket_server.h"
#include "zentavo/foundation/package.h"
#include "zentavo/http/web_socket_connection.h"

namespace {

using namespace zentavo;

constexpr std::int64_t kLimit = 4096;  // bytes of a message
constexpr std::int32_t kNever = 0;     // whether something hangs is the fuzzer's to say

void Check(bool holds) {
  if (!holds) std::abort();
}

// One server for all inputs; it sends what `bytes` holds when the client comes.
struct Target {
  Target() { LoadPackage(); }

  std::string bytes;
  bool accepts = true;
  testing::WebSocketServer server{[this](testing::WebSocketPeer& peer) {
    if (!accepts) peer.ReadRequest();
    if (accepts && !peer.ShakeHands()) return;
    peer.Send(bytes);
    peer.EndSending();
    peer.Drain();
  }};
};

void Receive(TWebSocketConnection& channel) {
  TMemoryStream message;
  while (channel.ReceiveMsg(message)) Check(message.Size() <= kLimit);
  const std::uint32_t error = channel.LastError();
  Check(message.Size() <= kLimit);
  Check(error != 0 || channel.CloseStatus() != 0);
  Check(error == 0 || error == 12030 || error == 12152 || error == 12184);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Target* const target = new Target;
  if (size == 0) return 0;
  target->accepts = data[0] % 8 != 0;
  target->bytes.assign(reinterpret_cast<const char*>(data) + 1, size - 1);
  TWebSocketConnection channel;
  channel.SetMaxMessage(kLimit);
  channel.SetTimeouts(kNever, kNever);
  if (channel.Open(target->server.Url())) {
    Receive(channel);
  } else {
    const std::uint32_t error = channel.LastError();
    if (error != 12030 && error != 12152) std::fprintf(stderr, "Open failed with %u\n", error);
    Check(error == 12030 || error == 12152);
  }
  return 0;
}
