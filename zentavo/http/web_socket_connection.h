// A WebSocket channel to a server: whole messages, one call each.
//
//   TWebSocketConnection channel;
//   TMemoryStream answer;
//   if (channel.Open(u"wss://example.org/orders") && channel.SendMsg(AnsiString("next"))) {
//     while (channel.ReceiveMsg(answer)) { ... }
//   }
//   if (channel.LastError() != 0) { ... }  // 0: the server closed, see CloseStatus
//   channel.Close();
//
// Operations return whether they succeeded and record the system's error code in LastError; nothing
// is raised but by Open for a bad URL. A channel is used by one thread at a time.
#pragma once

#include <optional>

#include "zentavo/http/connection.h"

namespace zentavo {

class ZENTAVO_API TWebSocketConnection : public TObject {
 public:
  TWebSocketConnection();
  TWebSocketConnection(const TWebSocketConnection&) = delete;
  TWebSocketConnection& operator=(const TWebSocketConnection&) = delete;
  ~TWebSocketConnection() override;  // closes

  // Opens a channel to a ws, wss, http or https URL; an open one is closed before. Raises
  // EZentavoError "Error in URL: " and the URL.
  bool Open(StringView Url);
  // Each sends one binary message.
  bool SendMsg(const void* buffer, std::size_t size);
  bool SendMsg(const AnsiString& Text);
  bool SendMsg(const TMemoryStream& Stream);
  // See THTTPConnection::ReceiveSocketMsg.
  bool ReceiveMsg(TMemoryStream& Stream);
  // Does nothing without an open channel.
  void Close();

  bool IsOpen() const;
  std::uint32_t LastError() const;
  std::uint32_t LastStatus() const;  // of the answer to the handshake, 0 without one
  std::uint16_t CloseStatus() const;
  String CloseReason() const;
  // For the channel that is open and those opened later; kMaxSocketMsg at first.
  void SetMaxMessage(std::int64_t Bytes);
  // Milliseconds, 0 for no end; for channels opened later. They then stand on sessions of their own
  // instead of the shared one, which keeps its time-outs.
  void SetTimeouts(std::int32_t ReceiveTimeout, std::int32_t ConnectTimeout);

 private:
  struct Timeouts {
    std::int32_t receive_ms;
    std::int32_t connect_ms;
  };

  bool HasConnection();

  std::unique_ptr<THTTPConnection> FConnection;
  std::uint32_t FLastError = 0;  // of operations before the first Open
  std::int64_t FMaxMessage = kMaxSocketMsg;
  std::optional<Timeouts> FTimeouts;
};

// Looks up the system's WebSocket functions; the unit's start-up.
void InitializeWebSockets();

}  // namespace zentavo
