#include <cstdint>
#include <memory>
#include <string_view>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/http/web_socket_connection.h"

namespace zentavo::tool {

namespace {

constexpr std::int32_t kConnectTimeout = 60000;  // milliseconds
constexpr std::uint32_t kSwitchingProtocols = 101;

struct WsOptions {
  std::string url;
  std::vector<std::string> messages;
  std::int32_t timeout_ms = 30000;
};

void Open(TWebSocketConnection& channel, const std::string& url) {
  if (channel.Open(FromUtf8(url))) return;
  const std::uint32_t status = channel.LastStatus();
  if (status == 0 || status == kSwitchingProtocols) RaiseHttpError(channel.LastError());
  throw Exception(u"The server refused the channel with status " + IntToStr(status));
}

String ClosedText(const TWebSocketConnection& channel) {
  String text = u"The server closed with status " + IntToStr(channel.CloseStatus());
  const String reason = channel.CloseReason();
  return reason.empty() ? text : text + u": " + reason;
}

// Prints the next message, whose bytes are taken for UTF-8.
void PrintAnswer(TWebSocketConnection& channel, TMemoryStream& answer) {
  if (channel.ReceiveMsg(answer)) {
    const auto bytes = answer.Bytes();
    return PrintUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  if (channel.LastError() == 0) throw Exception(ClosedText(channel));
  RaiseHttpError(channel.LastError());
}

void RunWs(const WsOptions& options) {
  TWebSocketConnection channel;
  channel.SetTimeouts(options.timeout_ms, kConnectTimeout);
  Open(channel, options.url);
  TMemoryStream answer;
  for (const std::string& message : options.messages) {
    if (!channel.SendMsg(message)) RaiseHttpError(channel.LastError());
    PrintAnswer(channel, answer);
  }
  channel.Close();
}

}  // namespace

void AddWsCommand(CLI::App& program) {
  auto options = std::make_shared<WsOptions>();
  CLI::App& command =
      *program.add_subcommand("ws", "Send messages over a WebSocket and print the answers");
  command.add_option("URL", options->url, "The server, such as wss://example.org/path")->required();
  AddRepeated(command, "-m,--message", options->messages, "Send this text and wait for an answer");
  command
      .add_option("--timeout", options->timeout_ms, "Milliseconds to wait for an answer; 0: any")
      ->check(CLI::Range(0, 0x7FFFFFFF));
  command.callback([options] { RunWs(*options); });
}

}  // namespace zentavo::tool
