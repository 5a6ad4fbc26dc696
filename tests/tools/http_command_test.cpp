#include <gtest/gtest.h>

#include "tests/support/http_server.h"
#include "tests/support/temporary_folder.h"
#include "tests/tools/tool_run.h"
#include "tools/zentavo/transfer_progress.h"
#include "zentavo/framework/text.h"

namespace zentavo::testing {
namespace {

TEST(HttpCommand, PrintsTheBody) {
  HttpServer server(Answering([](const ReceivedRequest& request) {
    const bool missing = request.line.find("/none") != std::string::npos;
    return missing ? Response("no", "", "404 Not Found") : Response("got " + request.body);
  }));
  const std::string url = ToUtf8(server.Url());
  struct Row {
    std::vector<std::string> arguments;
    int exit_code;
    std::string output, error;
    std::string line;  // of the request
  };
  const Row rows[] = {
      {{url}, 0, "got \n", "", "GET / HTTP/1.1"},
      {{url, "-i"}, 0, "200 OK\ngot \n", "", "GET / HTTP/1.1"},
      {{url, "-d", "β"}, 0, "got β\n", "", "POST / HTTP/1.1"},
      {{url, "-d", "@-", "-X", "PUT", "-H", "A: b"}, 0, "got typed\n", "", "PUT / HTTP/1.1"},
      {{url, "-o", "-"}, 0, "got ", "", "GET / HTTP/1.1"},
      {{url + "none", "-i"},
       1,
       "404 Not Found\nno\n",
       "zentavo: The server answered 404 Not Found\n",
       "GET /none HTTP/1.1"},
      {{url, "-H", "A: b\nC: d"}, 1, "", "zentavo: [WinHTTP]: Error 87\n", ""},
      {{"http://"}, 1, "", "zentavo: Error in URL: http://\n", ""},
  };
  for (const Row& row : rows) {
    std::vector<std::string> arguments{"http"};
    arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
    const ProgramRun run = RunTool(arguments, "typed");
    EXPECT_EQ(run.exit_code, row.exit_code);
    EXPECT_EQ(run.output, row.output);
    EXPECT_EQ(run.error, row.error);
    const std::vector<ReceivedRequest> asked = server.Requests();
    EXPECT_TRUE(row.line.empty() || asked.back().line == row.line) << row.line;
  }
  EXPECT_EQ(RunTool({"http"}).exit_code, 2);
  EXPECT_EQ(RunTool({"http", url, "--timeout", "0"}).exit_code, 2);
}

TEST(HttpCommand, WritesTheFileWholeOrNotAtAll) {
  HttpServer good(Always(Response("bytes")));
  HttpServer cut(Once("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf"));
  HttpServer silent([](HttpServer&, HttpPeer& peer) { peer.AwaitEnd(); });
  const TemporaryFolder folder;
  const std::string file = ToUtf8(folder / u"f");
  const auto ask = [&](const HttpServer& server) {
    return RunTool({"http", ToUtf8(server.Url()), "-o", file, "--timeout", "300"});
  };
  EXPECT_EQ(ask(cut).error, "zentavo: [WinHTTP]: Error 12030\n");
  EXPECT_FALSE(std::filesystem::exists(PathOf(file)));
  EXPECT_EQ(ask(good).exit_code, 0);
  EXPECT_EQ(ask(cut).exit_code, 1);
  EXPECT_EQ(ask(silent).error, "zentavo: [WinHTTP]: Error 12002\n");
  EXPECT_EQ(ReadBytes(PathOf(file)), "bytes");
}

TEST(HttpCommand, BarShowsThePart) {
  EXPECT_EQ(tool::TransferBar(0, 2000),
            "[                                        ] 0% of 2,000 bytes");
  EXPECT_EQ(tool::TransferBar(1000, 2000),
            "[####################                    ] 50% of 2,000 bytes");
  EXPECT_EQ(tool::TransferBar(2000, 2000),
            "[########################################] 100% of 2,000 bytes");
  EXPECT_EQ(tool::TransferBar(2000, 0), "2,000 bytes");
}

}  // namespace
}  // namespace zentavo::testing
