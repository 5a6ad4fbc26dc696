#include <gtest/gtest.h>

#include "tests/http/http_asks.h"
#include "tests/support/http_server.h"
#include "tests/support/tls_front.h"

namespace zentavo {
namespace {

using namespace testing;  // the servers

std::string Redirect(std::string_view status, std::u16string_view location) {
  return Response("moved", "Location: " + ToUtf8(location) + "\r\n", status);
}

// Answers /start with a redirect, all else with "end".
HttpServer::Script RedirectingTo(const std::string& status, const String& location) {
  return Answering([=](const ReceivedRequest& request) {
    const bool start = request.line.find(" /start ") != std::string::npos;
    return start ? Redirect(status, location) : Response("end");
  });
}

std::uint32_t StatusOf(StringView url) {
  OwnConnection client(url);
  const bool success = client.Ask();
  EXPECT_EQ(success, client.LastStatus() < 300);
  return client.LastStatus();
}

TEST(HttpRedirect, KeepsOrChangesVerbAndBody) {
  struct Row {
    const char* status;
    const char16_t* verb;
    const char *line, *body;
  };
  const Row rows[] = {
      {"301 Moved", u"GET", "GET /end HTTP/1.1", ""},
      {"302 Found", u"POST", "GET /end HTTP/1.1", ""},
      {"301 Moved", u"POST", "GET /end HTTP/1.1", ""},
      {"302 Found", u"PUT", "PUT /end HTTP/1.1", "data"},
      {"303 See Other", u"PUT", "GET /end HTTP/1.1", ""},
      {"307 Temporary", u"POST", "POST /end HTTP/1.1", "data"},
      {"308 Permanent", u"PUT", "PUT /end HTTP/1.1", "data"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.status) + " " + ToUtf8(row.verb));
    HttpServer server(RedirectingTo(row.status, u"end"));
    const bool get = StringView(row.verb) == u"GET";
    OwnConnection client(server.Url(u"/start"));
    client.Ask(row.verb, get ? "" : "data", u"Content-Type: text/x\r\nX-Kept: 1");
    EXPECT_EQ(client.answer, "end");
    ASSERT_EQ(server.Requests().size(), 2u);
    const ReceivedRequest second = server.Requests()[1];
    EXPECT_EQ(second.line, row.line);
    EXPECT_EQ(second.body, row.body);
    EXPECT_EQ(second.Header("X-Kept"), "1");
    EXPECT_EQ(second.Header("Content-Type").empty(), second.body.empty() && !get);
  }
}

TEST(HttpRedirect, SecretsStayWithTheServer) {
  HttpServer other(Always(Response("end")));
  HttpServer first(RedirectingTo("302 Found", other.Url(u"/end")));
  const StringView headers =
      u"Authorization: secret\r\nCookie: secret\r\nproxy-authorization: secret\r\nX-Kept: 1";
  EXPECT_TRUE(OwnConnection(first.Url(u"/start")).Ask(u"GET", {}, headers));
  EXPECT_EQ(first.Requests().front().Header("Authorization"), "secret");
  const ReceivedRequest second = other.Requests().front();
  EXPECT_EQ(second.headers.find("secret"), std::string::npos);
  EXPECT_EQ(second.Header("X-Kept"), "1");

  HttpServer same(RedirectingTo("302 Found", u"/end"));
  OwnConnection(same.Url(u"/start")).Ask(u"GET", {}, headers);
  EXPECT_EQ(same.Requests()[1].Header("Authorization"), "secret");
}

TEST(HttpRedirect, NeverFromSecureToPlain) {
  TlsFront* const front = TlsFront::Find();
  if (front == nullptr) GTEST_SKIP() << "tls_front is missing";
  HttpServer plain(Always(Response("end")));
  HttpServer first(RedirectingTo("302 Found", plain.Url(u"/end")));
  EXPECT_EQ(StatusOf(front->Url(first.Port(), "good", u"/start")), 302u);
  EXPECT_TRUE(plain.Requests().empty());

  HttpServer upwards(RedirectingTo("302 Found", front->Url(plain.Port())));
  EXPECT_EQ(Get(upwards.Url(u"/start")), "end");
}

TEST(HttpRedirect, AnswerComesBackWhereItLeadsNowhere) {
  for (const StringView location : {u"ftp://x/", u"http://", u"http://a b/"}) {
    HttpServer server(RedirectingTo("302 Found", String(location)));
    EXPECT_EQ(StatusOf(server.Url(u"/start")), 302u) << ToUtf8(location);
  }
  HttpServer without(Always(Response("", "", "302 Found")));
  EXPECT_EQ(StatusOf(without.Url()), 302u);
  HttpServer other_kind(Always(Response("", "Location: /x\r\n", "304 Not Modified")));
  EXPECT_EQ(StatusOf(other_kind.Url()), 304u);
}

TEST(HttpRedirect, EndsAfterTen) {
  const auto counting = [](int hops) {
    return Answering([hops](const ReceivedRequest& request) {
      const int number = std::stoi(request.line.substr(request.line.find('/') + 1));
      return number == hops
                 ? Response("end")
                 : Response("", "Location: /" + std::to_string(number + 1) + "\r\n", "302 Found");
    });
  };
  HttpServer ten(counting(10));
  EXPECT_EQ(Get(ten.Url(u"/0")), "end");
  HttpServer eleven(counting(11));
  EXPECT_EQ(Get(eleven.Url(u"/0")), "[WinHTTP]: Error 12156");
  EXPECT_EQ(eleven.Requests().size(), 11u);
}

}  // namespace
}  // namespace zentavo
