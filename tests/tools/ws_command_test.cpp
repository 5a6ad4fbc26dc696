#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/web_socket_server.h"
#include "tests/tools/tool_run.h"

namespace zentavo::testing {
namespace {

struct Row {
  WebSocketServer::Script serve;  // behind the handshake
  std::vector<std::string> arguments;
  int exit_code;
  const char* printed;  // on standard output, or on standard error when the exit code is not 0
};

TEST(WsCommand, PrintsTheAnswers) {
  const auto echo = [](WebSocketPeer& peer) { peer.AnswerUntilClosed(true); };
  const auto close = [](WebSocketPeer& peer) {
    peer.Send(CloseFrame(1001, "bye"));
    peer.Drain();
  };
  const auto silence = [](WebSocketPeer& peer) { peer.Drain(); };
  const Row rows[] = {
      {echo, {}, 0, ""},
      {echo, {"-m", "one", "-m", "", "-m", "\xCE\xB1\n"}, 0, "one\n\n\xCE\xB1\n"},
      {close, {"-m", "one"}, 1, "zentavo: The server closed with status 1001: bye\n"},
      {silence, {"-m", "one", "--timeout", "1000"}, 1, "zentavo: [WinHTTP]: Error 12002\n"},
  };
  for (const Row& row : rows) {
    WebSocketServer server([&row](WebSocketPeer& peer) {
      if (peer.ShakeHands()) row.serve(peer);
    });
    std::vector<std::string> arguments{"ws", ToUtf8(server.Url(u"/a"))};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ProgramRun run = RunTool(arguments);
    EXPECT_EQ(run.exit_code, row.exit_code) << row.printed;
    EXPECT_EQ(row.exit_code == 0 ? run.output : run.error, row.printed);
  }
}

TEST(WsCommand, ReportsWhatIsNoChannel) {
  WebSocketServer server([](WebSocketPeer& peer) {
    peer.ReadRequest();
    peer.Send("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n");
  });
  EXPECT_EQ(RunTool({"ws", ToUtf8(server.Url())}).error,
            "zentavo: The server refused the channel with status 403\n");
  EXPECT_EQ(RunTool({"ws", "nowhere"}).error, "zentavo: Error in URL: nowhere\n");
  EXPECT_EQ(RunTool({"ws"}).exit_code, 2);
}

}  // namespace
}  // namespace zentavo::testing
