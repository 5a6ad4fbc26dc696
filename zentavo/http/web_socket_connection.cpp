#include "zentavo/http/web_socket_connection.h"

#include <utility>

namespace zentavo {

namespace {

constexpr std::uint32_t kInvalidHandle = 6;

}  // namespace

TWebSocketConnection::TWebSocketConnection() = default;
TWebSocketConnection::~TWebSocketConnection() = default;

bool TWebSocketConnection::Open(StringView Url) {
  Close();
  String path;
  std::unique_ptr<THTTPConnection> connection;
  if (FTimeouts) {
    connection = std::make_unique<THTTPConnection>(true);
    connection->OpenConnectionFromUrl(Url, path);
    connection->SetTimeouts(FTimeouts->receive_ms, FTimeouts->connect_ms);
  } else {
    connection = CreateConnectionFromUrl(Url, path);
  }
  connection->SetMaxSocketMsg(FMaxMessage);
  connection->InitWebSocket(path);
  FConnection = std::move(connection);
  return IsOpen();
}

bool TWebSocketConnection::HasConnection() {
  if (!FConnection) FLastError = kInvalidHandle;
  return FConnection != nullptr;
}

bool TWebSocketConnection::SendMsg(const void* buffer, std::size_t size) {
  return HasConnection() && FConnection->SendSocketMsg(buffer, size);
}

bool TWebSocketConnection::SendMsg(const AnsiString& Text) {
  return HasConnection() && FConnection->SendSocketMsg(Text);
}

bool TWebSocketConnection::SendMsg(const TMemoryStream& Stream) {
  return HasConnection() && FConnection->SendSocketMsg(Stream);
}

bool TWebSocketConnection::ReceiveMsg(TMemoryStream& Stream) {
  return HasConnection() && FConnection->ReceiveSocketMsg(Stream);
}

void TWebSocketConnection::Close() {
  if (FConnection) FConnection->CloseWebSocket();
}

bool TWebSocketConnection::IsOpen() const {
  return FConnection && FConnection->WebSocketOpen();
}

std::uint32_t TWebSocketConnection::LastError() const {
  return FConnection ? FConnection->LastError() : FLastError;
}

std::uint32_t TWebSocketConnection::LastStatus() const {
  return FConnection ? FConnection->LastStatus() : 0;
}

std::uint16_t TWebSocketConnection::CloseStatus() const {
  return FConnection ? FConnection->SocketCloseStatus() : std::uint16_t{0};
}

String TWebSocketConnection::CloseReason() const {
  return FConnection ? FConnection->SocketCloseReason() : String();
}

void TWebSocketConnection::SetMaxMessage(std::int64_t Bytes) {
  FMaxMessage = Bytes;
  if (FConnection) FConnection->SetMaxSocketMsg(Bytes);
}

void TWebSocketConnection::SetTimeouts(std::int32_t ReceiveTimeout, std::int32_t ConnectTimeout) {
  FTimeouts = Timeouts{ReceiveTimeout, ConnectTimeout};
}

void InitializeWebSockets() {
  platform::LookUpWebSocketFunctions(u"winhttp.dll");
}

}  // namespace zentavo
