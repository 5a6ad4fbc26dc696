#include "zentavo/http/connection.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/http/http_asks.h"
#include "tests/support/error_of.h"
#include "tests/support/http_server.h"

namespace zentavo {
namespace {

using namespace testing;  // the servers

TEST(HttpConnection, RequestDecidesTheVerb) {
  HttpServer server(Always(Response("ok")));
  OwnConnection client(server.Url(u"/p?x=1"));
  EXPECT_TRUE(client.Request(client.path, nullptr, nullptr, {}, client.headers));
  TMemoryStream input;
  input.WriteBuffer("data", 4);  // its position is at the end: all of it is sent
  TMemoryStream output;
  EXPECT_TRUE(client.Request(client.path, &input, &output, {}, client.headers));
  EXPECT_EQ(output.Position(), 0);
  EXPECT_TRUE(client.Ask() && client.Ask(u"PUT", "data") && client.Ask(u"DELETE"));
  EXPECT_TRUE(client.Ask(u"HEAD"));
  std::string lines;
  std::string bodies;
  for (const ReceivedRequest& request : server.Requests()) {
    lines += request.line.substr(0, request.line.find(" /p?x=1 HTTP/1.1")) + " ";
    bodies += "[" + request.body + "]";
  }
  EXPECT_EQ(lines, "GET POST GET PUT DELETE HEAD ");
  EXPECT_EQ(bodies, "[][data][][data][][]");
}

TEST(HttpConnection, SendsItsAgentAndNoHeadersOfItsOwnMaking) {
  HttpServer server(Always(Response("ok")));
  for (const bool plain : {false, true}) {
    OwnConnection(server.Url(), 10000, plain).Ask({}, "x", u"X-Empty:\r\nX-Greek: \u03B1");
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
  };
  for (const Row& row : {Row{"200 OK", 200, true}, Row{"299 Odd", 299, true},
                         Row{"204 No Content", 204, true}, Row{"300 Multiple", 300, false},
                         Row{"404 Not Found", 404, false}, Row{"500 Oops", 500, false}}) {
    SCOPED_TRACE(row.status);
    const std::string body = row.code == 204 ? "" : "body";
    HttpServer server(Always(Response(body, "X: 1\r\n", row.status)));
    OwnConnection client(server.Url());
    EXPECT_EQ(client.Ask(), row.success);
    EXPECT_EQ(client.LastStatus(), row.code);
    EXPECT_EQ(client.answer, row.success ? body : "");
    EXPECT_NE(client.headers.find(u"\r\nX: 1\r\n"), String::npos);
    EXPECT_EQ(Get(client, client.path), body);  // into a stream of its own, whatever the status
  }
}

TEST(HttpConnection, RawHeadersFillABufferOf2000Bytes) {
  HttpServer server(Always(Response("b", "X-Long: " + std::string(3000, 'x') + "\r\n")));
  OwnConnection client(server.Url());
  EXPECT_TRUE(client.Ask());
  EXPECT_EQ(client.headers.size(), 999u);
  EXPECT_EQ(client.answer, "b");
}

TEST(HttpConnection, KeepsItsConnectionAlive) {
  HttpServer server(Always(Response("ok")));
  OwnConnection connection(server.Url());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Get(connection, u"/"), "ok");
  EXPECT_EQ(server.Requests().back().connection, 0);
  // A connection object after it uses what it left.
  connection.OpenConnection(u"localhost", false, 9);
  connection.OpenConnectionFromUrl(server.Url(), connection.path);
  EXPECT_EQ(Get(connection, u"/"), "ok");
  EXPECT_EQ(server.Requests().back().connection, 0);
}

TEST(HttpConnection, ConnectsAnewWhenTheKeptOneHasGone) {
  if (kOnWindows) GTEST_SKIP() << "Wine's service does not repeat what met a closed connection";
  HttpServer server(Once(Response("ok")));
  OwnConnection connection(server.Url());
  for (int i = 0; i < 20; ++i) EXPECT_EQ(Get(connection, u"/"), "ok");
}

TEST(HttpConnection, OpensTheSameServerOnceWhateverThePort) {
  HttpServer server(Always(Response("ok")));
  OwnConnection connection(server.Url());
  connection.OpenConnection(u"127.0.0.1", false, 1);  // no other port: nothing happens
  EXPECT_EQ(Get(connection, u"/"), "ok");
}

TEST(HttpConnection, CookiesAreTheSessions) {
  HttpServer server(Always(Response("ok", "Set-Cookie: a=1\r\n")));
  OwnConnection connection(server.Url());
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
  OwnConnection client(server.Url());
  const auto refused = [&](StringView path, StringView headers, StringView verb) {
    client.path = path;
    const std::string error = ErrorOf<EZentavoExtError>([&] { client.Ask(verb, {}, headers); });
    return error == "[WinHTTP]: Error 87" && client.LastError() == 87;
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
  EXPECT_THROW(client.OpenConnection(u"h/x", false), EZentavoExtError);
  EXPECT_THROW(client.OpenConnection(u"a@b", false), EZentavoExtError);
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
  class Doubling : public OwnConnection {
   public:
    using OwnConnection::OwnConnection;
    void DoReadResponseStream(HttpExchange& request, TStream& stream) override {
      stream.WriteBuffer("<", 1);
      TMemoryStream own;
      ReadResponseStream(request, own);
      stream.CopyFrom(own, 0);
    }
  };
  HttpServer server(Always(Response("ok")));
  Doubling connection(server.Url());
  connection.Ask();
  EXPECT_EQ(connection.answer, "<ok");
}

TEST(HttpConnection, RequestsOfOneConnectionMayOverlap) {
  const std::string large(300000, 'x');
  HttpServer server(Answering([&](const ReceivedRequest& request) {
    return Response(request.line.find("/large") != std::string::npos ? large : "small");
  }));
  OwnConnection connection(server.Url());
  const THTTPHandle first = connection.OpenRequest(u"/large", u"GET");
  connection.SendRequest(*first, {}, nullptr, 0);
  connection.ReceiveResponse(*first);
  EXPECT_EQ(Get(connection, u"/small"), "small");
  EXPECT_EQ(connection.ReadResponseString(*first).size(), large.size());
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
