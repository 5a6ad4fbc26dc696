// The WebSocket operations of a connection.
#include <algorithm>

#include "zentavo/http/connection.h"
#include "zentavo/http/message_assembly.h"

namespace zentavo {

namespace {

constexpr platform::SystemError kInvalidHandle = 6;
constexpr std::uint16_t kNormalClosure = 1000;
constexpr std::uint16_t kProtocolError = 1002;

}  // namespace

void THTTPConnection::InitWebSocket(StringView path) {
  CloseWebSocket();
  FLastStatus = 0;
  FSocketClose = {};
  if (!FConnection) {
    FLastError = kInvalidHandle;
  } else if (const std::optional<String> target = RequestPath(path); !target) {
    FLastError = platform::kHttpInvalidParameter;
  } else {
    FWebSocket = platform::WebSocket::Open(*FConnection, *target, FLastStatus, FLastError);
  }
}

bool THTTPConnection::SendSocketMsg(const void* buffer, std::size_t size) {
  const std::span message(static_cast<const std::byte*>(buffer), size);
  FLastError = FWebSocket ? FWebSocket->Send(message) : kInvalidHandle;
  return FLastError == 0;
}

bool THTTPConnection::SendSocketMsg(const AnsiString& Text) {
  return SendSocketMsg(Text.data(), Text.size());
}

bool THTTPConnection::SendSocketMsg(const TMemoryStream& Stream) {
  return SendSocketMsg(Stream.Memory(), Stream.Bytes().size());
}

bool THTTPConnection::ReceiveSocketMsg(TMemoryStream& Stream) {
  if (!FWebSocket) {
    Stream.SetSize(0);
    FLastError = kInvalidHandle;
    return false;
  }
  MessageAssembly assembly(*FWebSocket, Stream, FMaxSocketMsg);
  FLastError = assembly.Run();
  if (assembly.Closed()) FSocketClose = FWebSocket->PeerClose();
  return FLastError == 0 && !assembly.Closed();
}

// A peer that never sends a byte is left alone after some pieces, like within a message.
bool THTTPConnection::ReceiveSocketBytes(void* buffer, std::size_t size) {
  std::span<std::byte> rest(static_cast<std::byte*>(buffer), size);
  FLastError = FWebSocket ? 0 : kInvalidHandle;
  for (int empty_pieces = 0; !rest.empty() && FLastError == 0;) {
    platform::WebSocketPiece piece;
    FLastError = FWebSocket->Receive(rest, piece);
    if (piece.is_close) FSocketClose = FWebSocket->PeerClose();
    if (piece.is_close) return false;
    rest = rest.subspan(piece.count);
    empty_pieces = piece.count == 0 ? empty_pieces + 1 : 0;
    if (empty_pieces > kMostEmptyPieces) {
      FWebSocket->Abandon(kProtocolError);
      FLastError = platform::kHttpInvalidResponse;
    }
  }
  return FLastError == 0;
}

void THTTPConnection::CloseWebSocket() {
  if (!FWebSocket) return;
  FLastError = FWebSocket->Close(kNormalClosure);
  FSocketClose = FWebSocket->PeerClose();
  FWebSocket.reset();
}

void THTTPConnection::SetMaxSocketMsg(std::int64_t Bytes) {
  FMaxSocketMsg = std::max<std::int64_t>(Bytes, 0);
}

}  // namespace zentavo
