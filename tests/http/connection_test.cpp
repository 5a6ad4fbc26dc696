#include "zentavo/http/connection.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/http/http_asks.h"
#include "tests/support/http_server.h"

namespace zentavo {
namespace {

using namespace testing;  // the servers

TEST(HttpConnection, RequestDecidesTheVerb) {
  HttpServer server(Always(Response("ok")));
  String path;
  const auto connection = CreateConnectionFromUrl(server.Url(u"/p?x=1"), path);
  TMemoryStream empty;
  TMemoryStream input;
  input.WriteBuffer("data", 4);  // its position is at the end: all of it is sent
  TMemoryStream output;
  String headers;
  EXPECT_TRUE(connection->Request(path, nullptr, &output, {}, headers));
  EXPECT_TRUE(connection->Request(path, &empty, &output, {}, headers));
  EXPECT_TRUE(connection->Request(path, &input, &output, {}, headers));
  EXPECT_TRUE(connection->Request(path, &input, &output, {}, headers, u"PUT"));
  EXPECT_TRUE(connection->Request(path, nullptr, &output, {}, headers, u"DELETE"));
  EXPECT_TRUE(connection->Request(path, nullptr, nullptr, {}, headers, u"HEAD"));
  const std::vector<ReceivedRequest> requests = server.Requests();
  const char* const lines[] = {"GET /p?x=1 HTTP/1.1",    "GET /p?x=1 HTTP/1.1",
                               "POST /p?x=1 HTTP/1.1",   "PUT /p?x=1 HTTP/1.1",
                               "DELETE /p?x=1 HTTP/1.1", "HEAD /p?x=1 HTTP/1.1"};
  ASSERT_EQ(requests.size(), std::size(lines));
  for (std::size_t i = 0; i < requests.size(); ++i) EXPECT_EQ(requests[i].line, lines[i]);
  EXPECT_EQ(requests[2].body, "data");
  EXPECT_EQ(requests[3].body, "data");
  EXPECT_EQ(output.Position(), 0);
}

TEST(HttpConnection, SendsItsAgentAndNoHeadersOfItsOwnMaking) {
  HttpServer server(Always(Response("ok")));
  for (const bool plain : {false, true}) {
    THTTPConnection connection(true, plain);
    String path;
    connection.OpenConnectionFromUrl(server.Url(), path);
    TMemoryStream input;
    input.WriteBuffer("x", 1);
    String headers;
    connection.Request(path, &input, nullptr, u"X-Empty:\r\nX-Greek: \u03B1", headers);
    const ReceivedRequest request = server.Requests().back();
    EXPECT_EQ(request.Header("User-Agent"), plain ? "" : "Zentavo");
    EXPECT_NE(request.headers.find("X-Empty:"), std::string::npos);
    EXPECT_EQ(request.Header("Host"), "127.0.0.1:" + std::to_string(server.Port()));
    for (const char* name : {"Accept", "Expect", "Content-Type", "Referer"}) {
      EXPECT_EQ(request.Header(name), "") << name;
    }
    EXPECT_TRUE(!plain || request.Header("Accept-Encoding").empty());
  }
}

TEST(HttpConnection, StatusDecidesSuccess) {
  struct Row {
    const char* status;
    std::uint32_t code;
    bool success;
    const char* body;
  };
  const Row rows[] = {
      {"200 OK", 200, true, "body"},     {"299 Odd", 299, true, "body"},
      {"204 No Content", 204, true, ""}, {"300 Multiple", 300, false, ""},
      {"404 Not Found", 404, false, ""}, {"500 Oops", 500, false, ""},

  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.status);
    HttpServer server(Always(Response(row.code == 204 ? "" : "body", "X: 1\r\n", row.status)));
    String path;
    const auto connection = CreateConnectionFromUrl(server.Url(), path);
    TMemoryStream output;
    String headers;
    EXPECT_EQ(connection->Request(path, nullptr, &output, {}, headers), row.success);
    EXPECT_EQ(connection->LastStatus(), row.code);
    EXPECT_EQ(BytesOf(output), row.body);
    EXPECT_NE(headers.find(u"\r\nX: 1\r\n"), String::npos);
    TMemoryStream any_body;
    connection->Request(path, nullptr, &output, {}, headers, {}, &any_body);
    EXPECT_EQ(BytesOf(any_body), row.code == 204 ? "" : "body");
  }
}

TEST(HttpConnection, RawHeadersFillABufferOf2000Bytes) {
  HttpServer server(Always(Response("b", "X-Long: " + std::string(3000, 'x') + "\r\n")));
  String path;
  const auto connection = CreateConnectionFromUrl(server.Url(), path);
  TMemoryStream output;
  String headers;
  EXPECT_TRUE(connection->Request(path, nullptr, &output, {}, headers));
  EXPECT_EQ(headers.size(), 999u);
  EXPECT_EQ(BytesOf(output), "b");
}

TEST(HttpConnection, KeepsItsConnectionAlive) {
  HttpServer server(Always(Response("ok")));
  THTTPConnection connection(true);
  String path;
  connection.OpenConnectionFromUrl(server.Url(), path);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Get(connection, u"/"), "ok");
  EXPECT_EQ(server.Requests().back().connection, 0);
  // A connection object after it uses what it left.
  connection.OpenConnection(u"localhost", false, 9);
  connection.OpenConnectionFromUrl(server.Url(), path);
  EXPECT_EQ(Get(connection, u"/"), "ok");
  EXPECT_EQ(server.Requests().back().connection, 0);
}

TEST(HttpConnection, ConnectsAnewWhenTheKeptOneHasGone) {
  if (kOnWindows) GTEST_SKIP() << "Wine's service does not repeat what met a closed connection";
  HttpServer server([](HttpServer& self, HttpPeer& peer) {
    if (const auto request = peer.Read()) {
      self.Record(*request);
      peer.Send(Response("ok"));
    }
  });
  THTTPConnection connection(true);
  String path;
  connection.OpenConnectionFromUrl(server.Url(), path);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(Get(connection, u"/"), "ok");
}

TEST(HttpConnection, OpensTheSameServerOnceWhateverThePort) {
  HttpServer server(Always(Response("ok")));
  String path;
  const auto connection = CreateConnectionFromUrl(server.Url(), path);
  connection->OpenConnection(u"127.0.0.1", false, 1);  // no other port: nothing happens
  EXPECT_EQ(Get(*connection, u"/"), "ok");
}

TEST(HttpConnection, CookiesAreTheSessions) {
  HttpServer server(Always(Response("ok", "Set-Cookie: a=1\r\n")));
  THTTPConnection connection(true);
  String path;
  connection.OpenConnectionFromUrl(server.Url(), path);
  Get(connection, u"/");
  Get(connection, u"/");
  EXPECT_EQ(server.Requests()[0].Header("Cookie"), "");
  EXPECT_EQ(server.Requests()[1].Header("Cookie"), "a=1");
}

TEST(HttpConnection, ReachesIpv6) {
  HttpServer server(Always(Response("six")), AF_INET6);
  if (server.Port() == 0) GTEST_SKIP() << "no IPv6 here";
  EXPECT_EQ(Get(server.Url()), "six");
}

TEST(HttpConnection, RefusesTextThatBreaksLines) {
  HttpServer server(Always(Response("ok")));
  String path;
  const auto connection = CreateConnectionFromUrl(server.Url(), path);
  const auto refused = [&](StringView request_path, StringView headers, StringView verb) {
    try {
      String ignored;
      connection->Request(request_path, nullptr, nullptr, headers, ignored, verb);
      return false;
    } catch (const EZentavoExtError& error) {
      EXPECT_EQ(error.Message(), u"[WinHTTP]: Error 87");
      return error.ErrorId() == 87;
    }
  };
  for (const StringView headers :
       {StringView(u"X: a\nY: b"), StringView(u"X: a\rY: b"), StringView(u"X: a\r\n b"),
        StringView(u"X: a\r\n\r\nGET / HTTP/1.1"), StringView(u"X"), StringView(u": x"),
        StringView(u"X : y"), StringView(u"X: \0", 4), StringView(u"X: \x1B")}) {
    EXPECT_TRUE(refused(u"/", headers, u"GET")) << ToUtf8(headers);
  }
  EXPECT_TRUE(refused(u"/ HTTP/1.1\r\nX: y", {}, u"GET"));
  EXPECT_TRUE(refused(u"/", {}, u"GET /x"));
  EXPECT_TRUE(refused(u"/", {}, u"GET\r\n"));
  EXPECT_TRUE(server.Requests().empty());
  EXPECT_THROW(connection->OpenConnection(u"h/x", false), EZentavoExtError);
  EXPECT_THROW(connection->OpenConnection(u"a@b", false), EZentavoExtError);
}

TEST(HttpConnection, NotificationsReachTheObject) {
  class Listening : public THTTPConnection {
   public:
    void CallBack(std::uint32_t status, const void*, std::uint32_t) override {
      heard.push_back(status);
    }
    std::vector<std::uint32_t> heard;
  };
  HttpServer server(Always(Response("ok")));
  Listening connection;
  String path;
  EXPECT_THROW(connection.EnableCallbacks(0xFFFF), EZentavoExtError);  // nothing is open
  connection.OpenConnectionFromUrl(server.Url(), path);
  constexpr std::uint32_t kSentAndReceived = 0x20 | 0x80;
  connection.EnableCallbacks(kSentAndReceived);
  Get(connection, path);
  const auto heard = [&](std::uint32_t status) {
    return std::count(connection.heard.begin(), connection.heard.end(), status) != 0;
  };
  EXPECT_TRUE(heard(0x20) && heard(0x80) && !heard(0x10));
}

TEST(HttpConnection, DerivedClassReadsTheBody) {
  class Doubling : public THTTPConnection {
   public:
    void DoReadResponseStream(HttpExchange& request, TStream& stream) override {
      stream.WriteBuffer("<", 1);
      TMemoryStream own;
      ReadResponseStream(request, own);
      stream.CopyFrom(own, 0);
    }
  };
  HttpServer server(Always(Response("ok")));
  Doubling connection;
  String path;
  connection.OpenConnectionFromUrl(server.Url(), path);
  TMemoryStream output;
  String headers;
  connection.Request(path, nullptr, &output, {}, headers);
  EXPECT_EQ(BytesOf(output), "<ok");
}

TEST(HttpConnection, RequestsOfOneConnectionMayOverlap) {
  const std::string large(300000, 'x');
  HttpServer server(Answering([&](const ReceivedRequest& request) {
    return Response(request.line.find("/large") != std::string::npos ? large : "small");
  }));
  String path;
  const auto connection = CreateConnectionFromUrl(server.Url(), path);
  const THTTPHandle first = connection->OpenRequest(u"/large", u"GET");
  connection->SendRequest(*first, {}, nullptr, 0);
  connection->ReceiveResponse(*first);
  EXPECT_EQ(Get(*connection, u"/small"), "small");
  EXPECT_EQ(connection->ReadResponseString(*first).size(), large.size());
}

TEST(HttpConnection, HostsThatShowErrorsThemselvesSeeTheSilentAbort) {
  FIsAutomation = true;
  THTTPConnection connection;
  EXPECT_THROW(connection.OpenConnection(u"a b", false), EAbort);
  FIsAutomation = false;
  EXPECT_EQ(FLastErrorString, u"[WinHTTP]: Error 12005");
}

}  // namespace
}  // namespace zentavo
