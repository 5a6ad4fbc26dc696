// A connection to one HTTP server, and the WebSocket that may stand on it.
//
//   String path;
//   const auto connection = CreateConnectionFromUrl(u"https://example.org/orders?id=7", path);
//   TMemoryStream answer;
//   String headers;
//   if (connection->Request(path, nullptr, &answer, u"Accept: application/json", headers)) { ... }
//
// A failed exchange raises EZentavoExtError with the system's error code in ErrorId:
// "[WinHTTP]: Cannot Connect to Server" for 12029, else "[WinHTTP]: Error %d". A status of 300 or
// above is no error. Header text that would break lines is refused with error 87.
//
// A connection is used by one thread at a time; the class-level operations by any.
#pragma once

#include <memory>

#include "zentavo/framework/stream.h"
#include "zentavo/http/exchange.h"
#include "zentavo/platform/web_socket.h"

namespace zentavo {

// Raises the EZentavoExtError of a failed exchange.
[[noreturn]] ZENTAVO_API void RaiseHttpError(std::uint32_t code);

// The longest WebSocket message, in bytes, unless SetMaxSocketMsg says otherwise.
inline constexpr std::int64_t kMaxSocketMsg = std::int64_t{64} << 20;

class ZENTAVO_API THTTPConnection : public TObject {
 public:
  // On the process's shared session (agent "Zentavo", gzip and deflate decoded) unless
  // `OwnedSession`; an owned one is the same, or with `zentavosession` has no agent and decodes
  // nothing.
  explicit THTTPConnection(bool OwnedSession = false, bool zentavosession = false);
  THTTPConnection(const THTTPConnection&) = delete;
  THTTPConnection& operator=(const THTTPConnection&) = delete;
  ~THTTPConnection() override;

  // On the shared session, with OpenConnection.
  static std::unique_ptr<THTTPConnection> CreateConnection(StringView srvname, bool IsSecure,
                                                           std::uint16_t port = 0);

  // Does nothing when open to the same server name with the same security, whatever the port. Port
  // 0 is 443 or 80.
  void OpenConnection(StringView srvname, bool IsSecure, std::uint16_t port = 0);
  // Raises EZentavoError "Error in URL: " and the URL. `path` is what to ask the server for.
  void OpenConnectionFromUrl(StringView Url, String& path);

  // Milliseconds, 0 for no end. Of the session, also when that is the shared one: for all requests
  // opened from now on.
  void SetTimeouts(std::int32_t ReceiveTimeout, std::int32_t ConnectTimeout);
  // For the sessions that this thread opens from now on. Does nothing while Send is 30000, the mark
  // of an unset setting: the sessions keep the system's defaults then.
  static void HttpCallTimeouts(std::int32_t Connect, std::int32_t Send, std::int32_t Receive);

  // Has CallBack told of the notifications in the flags (WinHTTP's numbers).
  void EnableCallbacks(std::uint32_t dwNotificationFlags);

  // Raises when the system refuses. The handle must not outlive the connection.
  THTTPHandle OpenRequest(StringView path, StringView verb);
  // A whole exchange. The verb is `AVerb`, else POST when `input` has a size above 0, else GET; all
  // of `input` is sent. Returns whether the status is below 300; then the body is in `output`
  // (unless the status is 204), whose position is 0. With `Stream` the body goes there instead,
  // whatever the status. `outheaders` gets the first 999 units of the raw headers.
  bool Request(StringView path, TStream* input, TStream* output, StringView extraheaders,
               String& outheaders, StringView AVerb = {}, TStream* Stream = nullptr);

  // `bytes` of `data` are the body; they must stay until the answer is received. `extraheaders` are
  // lines, each but the last ended by CR LF. These raise when the exchange fails.
  void SendRequest(HttpExchange& Request, StringView extraheaders, const void* data,
                   std::size_t bytes);
  // The same with all of `body`, streamed.
  void SendRequest(HttpExchange& Request, StringView extraheaders, TStream& body);
  // With `Stream`, reads the body into it too.
  void ReceiveResponse(HttpExchange& Request, TStream* Stream = nullptr);
  // Writes the body to `Stream` in pieces of at most 16384 bytes, then sets its position to 0.
  // Error 12184 when a body that came compressed grows beyond MaxDecodedSize. `Stream` must not use
  // the connection.
  void ReadResponseStream(HttpExchange& Request, TStream& Stream);
  // The body as text, by the character set that the answer names: utf-7, utf-16 (little end first),
  // a windows- code page that is known, else UTF-8. Error 12184 beyond MaxTextSize.
  String ReadResponseString(HttpExchange& Request);
  // Closes the handle; does nothing with a null one.
  static void CloseHandle(THTTPHandle& AHandle);

  // WebSocket. Nothing is raised: the operations return whether they succeeded and record the
  // system's error code in LastError, 6 without a WebSocket. After an error the channel is over,
  // and further calls fail with 4317.

  // Upgrades a request for `path`; an open WebSocket is closed before. On failure there is no
  // WebSocket; LastStatus is the status of the answer, 0 without one.
  void InitWebSocket(StringView path);
  bool WebSocketOpen() const { return FWebSocket != nullptr; }
  // Each sends one binary message.
  bool SendSocketMsg(const void* buffer, std::size_t size);
  bool SendSocketMsg(const AnsiString& Text);
  bool SendSocketMsg(const TMemoryStream& Stream);
  // Replaces the stream's content by one whole message, binary or text, whatever its fragments; the
  // capacity grows as it takes, by whole multiples of 512 bytes. Returns false with LastError 0
  // when the peer closed, see SocketCloseStatus. After an error the stream holds what arrived.
  bool ReceiveSocketMsg(TMemoryStream& Stream);
  // Receives exactly `size` bytes, over as many messages as it takes. The rest of a message stays
  // for the next call.
  bool ReceiveSocketBytes(void* buffer, std::size_t size);
  // Closes with status 1000 and waits for the peer's answer; does nothing without a WebSocket.
  void CloseWebSocket();
  // The peer's close frame: its status, 0 before there was one and 1005 when it had none, and its
  // reason. They stay until the next InitWebSocket.
  std::uint16_t SocketCloseStatus() const { return FSocketClose.status; }
  String SocketCloseReason() const { return FromUtf8(FSocketClose.reason); }
  // A message of more than so many bytes fails with 12184.
  void SetMaxSocketMsg(std::int64_t Bytes);

  bool IsSessionOwned() const { return FIsSessionOwned; }

  // Bytes. Initially 64 MiB and 1 GiB.
  std::int64_t MaxTextSize() const { return FMaxTextSize; }
  void SetMaxTextSize(std::int64_t size) { FMaxTextSize = size; }
  std::int64_t MaxDecodedSize() const { return FMaxDecodedSize; }
  void SetMaxDecodedSize(std::int64_t size) { FMaxDecodedSize = size; }

  std::uint32_t LastError() const { return FLastError; }    // the last system error code
  std::uint32_t LastStatus() const { return FLastStatus; }  // the last HTTP status code

  // Reads the body; for derived classes to take it otherwise.
  virtual void DoReadResponseStream(HttpExchange& Request, TStream& Stream);
  // A notification that EnableCallbacks asked for. Must not raise.
  virtual void CallBack(std::uint32_t Status, const void* Info, std::uint32_t InfoLength);

 private:
  // Records `error` and raises it unless it is 0.
  void Check(platform::SystemError error);
  void Send(HttpExchange& Request, StringView extraheaders,
            std::unique_ptr<platform::HttpBody> body);

  std::shared_ptr<platform::HttpSession> FSession;
  std::shared_ptr<platform::HttpConnection> FConnection;
  bool FIsSessionOwned;
  std::uint32_t FLastError = 0;
  std::uint32_t FLastStatus = 0;
  bool FIsSecure = false;
  String FServerName;
  std::unique_ptr<platform::WebSocket> FWebSocket;
  std::uint16_t FPort = 0;  // of FConnection
  std::int64_t FMaxTextSize = std::int64_t{64} << 20;
  std::int64_t FMaxDecodedSize = std::int64_t{1} << 30;
  platform::WebSocketClose FSocketClose;
  std::int64_t FMaxSocketMsg = kMaxSocketMsg;
};

// A connection on the shared session to the server of `Url`; `path` is what to ask it for. Raises
// EZentavoError "Error in URL: " and the URL.
ZENTAVO_API std::unique_ptr<THTTPConnection> CreateConnectionFromUrl(StringView Url, String& path);

}  // namespace zentavo
