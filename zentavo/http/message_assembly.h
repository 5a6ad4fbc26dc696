// One WebSocket message put together in a memory stream from the pieces that arrive.
#pragma once

#include "zentavo/framework/stream.h"
#include "zentavo/platform/web_socket.h"

namespace zentavo {

class MessageAssembly {
 public:
  // At most `limit` bytes are kept.
  MessageAssembly(platform::WebSocket& socket, TMemoryStream& stream, std::int64_t limit)
      : socket_(socket), stream_(stream), limit_(limit) {}

  // Receives until the message is whole or the peer closed. The stream then holds what arrived,
  // also after an error: kHttpResponseOverflow behind the limit, kHttpInvalidResponse for text that
  // is no UTF-8 and for pieces that do not belong together. After these two the channel is over.
  platform::SystemError Run();
  bool Closed() const { return piece_.is_close; }

 private:
  platform::SystemError Collect();
  platform::SystemError TakePiece();
  std::span<std::byte> Space();

  platform::WebSocket& socket_;
  TMemoryStream& stream_;
  const std::int64_t limit_;
  std::int64_t received_ = 0;
  platform::WebSocketPiece piece_;
  int pieces_ = 0;
  int empty_pieces_ = 0;  // one after the other
  bool is_text_ = false;
  std::byte probe_{};
};

// A peer that sends so many pieces without a byte, one after the other, is refused.
inline constexpr int kMostEmptyPieces = 1000;

}  // namespace zentavo
