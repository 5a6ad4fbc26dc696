#include "zentavo/http/request.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/http/http_asks.h"
#include "tests/support/environment.h"
#include "tests/support/error_of.h"
#include "tests/support/http_server.h"
#include "tests/support/program_run.h"
#include "tests/support/temporary_folder.h"

namespace zentavo {
namespace {

using namespace testing;  // the servers

TEST(HttpRequest, TextGoesAsJsonUnlessTheCallerSaysOtherwise) {
  HttpServer server(Always(Response("{}")));
  const auto last = [&] { return server.Requests().back(); };
  EXPECT_EQ(THTTPRequest::DoExecute(server.Url(), u"\u03B1"), u"{}");
  EXPECT_EQ(last().line, "POST / HTTP/1.1");
  EXPECT_EQ(last().body, "\xCE\xB1");
  EXPECT_EQ(last().Header("Content-type"), "application/json; charset=utf-8");
  THTTPRequest::DoExecute(server.Url(), u"");
  EXPECT_EQ(last().line, "GET / HTTP/1.1");
  EXPECT_EQ(last().Header("Content-type"), "");
  THTTPRequest::CreateFromUrl(server.Url())->Execute(u"", true);
  EXPECT_EQ(last().line, "POST / HTTP/1.1");
  THTTPRequest::CreateFromUrl(server.Url())->Execute(u"x", false, {u"A: 1", u"B: 2"});
  EXPECT_EQ(last().Header("A") + last().Header("B") + last().Header("Content-type"), "12");
  THTTPRequest::CreateFromUrl(server.Url())->ExecuteWithVerb(u"x", u"PATCH");
  EXPECT_EQ(last().line, "PATCH / HTTP/1.1");
  THTTPRequest::DoExecuteWithHeaders(server.Url(), u"x", u" A: 1 \r\n\r\nB: 2\r C: 3");
  EXPECT_EQ(last().Header("A") + last().Header("B") + last().Header("C"), "123");
  EXPECT_EQ(last().line, "POST / HTTP/1.1");
  THTTPRequest::DoExecuteWithHeaders(server.Url(), u"", u"", u"OPTIONS");
  EXPECT_EQ(last().line, "OPTIONS / HTTP/1.1");
}

TEST(HttpRequest, TheFirstExecutionDecidesTheVerb) {
  HttpServer server(Always(Response("ok")));
  const auto request = THTTPRequest::CreateFromUrl(server.Url());
  request->Execute(u"");
  EXPECT_EQ(request->Execute(u"body"), u"ok");
  EXPECT_EQ(server.Requests()[1].line, "GET / HTTP/1.1");
  EXPECT_EQ(server.Requests()[1].body, "body");
}

TEST(HttpRequest, RefusesHeadersThatBreakLines) {
  HttpServer server(Always(Response("ok")));
  const auto request = THTTPRequest::CreateFromUrl(server.Url());
  for (const StringView header : {u"X: a\r\nY: b", u"X: a\r\n", u"X: a\nY: b", u"X", u" X: a"}) {
    EXPECT_THROW(request->AddHeader(header), EZentavoExtError) << ToUtf8(header);
  }
  EXPECT_THROW(request->ExecuteWithHeaders(u"", u"A: b\nC: d"), EZentavoExtError);
  EXPECT_TRUE(server.Requests().empty());
}

TEST(HttpRequest, TellsStatusAndHeaders) {
  HttpServer server(Always(Response("no",
                                    "Content-Type: text/x\r\nX-Fits: " + std::string(1023, 'f') +
                                        "\r\nX-Long: " + std::string(1024, 'l') + "\r\n",
                                    "404 Not Found")));
  const auto request = THTTPRequest::CreateFromUrl(server.Url());
  EXPECT_EQ(request->GetHTTPStatusCode(), 0u);
  EXPECT_EQ(request->GetCustomHeader(u"X-Fits"), u"");
  EXPECT_EQ(request->Execute(u""), u"no");
  EXPECT_EQ(request->GetHTTPStatusCode(), 404u);
  EXPECT_EQ(request->GetHeader(1), u"text/x");
  EXPECT_EQ(request->GetHeader(5), u"2");
  EXPECT_EQ(request->GetHeader(43) + request->GetHeader(18) + request->GetHeader(-1) +
                request->GetHeader(999),
            u"");
  EXPECT_EQ(request->GetCustomHeader(u"x-fits").size(), 1023u);
  EXPECT_EQ(request->GetCustomHeader(u"X-Long"), u"");
}

TEST(HttpRequest, TextFollowsTheCharacterSet) {
  struct Row {
    const char* type;
    std::string_view bytes;
    StringView text;
  };
  using namespace std::string_view_literals;
  const Row rows[] = {
      {"text/plain", "\xCE\xB1", u"\u03B1"},
      {"text/plain; charset=windows-1253", "\xE1", u"\u03B1"},
      {"text/plain; x=y; Charset=\"Windows-1253\"", "\xE1", u"\u03B1"},
      {"text/plain; charset=windows-9", "\xCE\xB1", u"\u03B1"},
      {"text/plain; charset=windows-x", "\xCE\xB1", u"\u03B1"},
      {"text/plain; charset=iso-8859-7", "\xCE\xB1", u"\u03B1"},
      {"text/plain; charset=UTF-16", "\xB1\x03x\0"sv, u"\u03B1x"},
      {"text/plain; charset=utf-16", "\xB1\x03x", u"\u03B1\uFFFD"},
      {"text/plain; charset=utf-7", "+A7E-", u"\u03B1"},
      {"text/plain", "a\xFF", u"a\uFFFD"},
      {"text/plain; charset=", "a", u"a"},
  };
  for (const Row& row : rows) {
    HttpServer server(
        Always(Response(row.bytes, "Content-Type: " + std::string(row.type) + "\r\n")));
    EXPECT_EQ(THTTPRequest::DoExecute(server.Url(), u""), row.text) << row.type;
  }
}

TEST(HttpRequest, StreamsBothWays) {
  class Pieces : public TMemoryStream {
   public:
    std::int64_t Write(const void* buffer, std::int64_t count) override {
      longest = std::max(longest, count);
      return TMemoryStream::Write(buffer, count);
    }
    std::int64_t longest = 0;
  };
  HttpServer server(Answering([](const ReceivedRequest& request) {
    EXPECT_EQ(request.line, "POST / HTTP/1.1");
    return Response(request.body);
  }));
  TMemoryStream input;
  input.SetSize(20'000'000);
  for (std::int64_t i = 0; i < input.Size(); ++i)
    input.Memory()[i] = static_cast<std::byte>(i % 251);
  Pieces output;
  THTTPRequest::DoExecuteStream(server.Url(), &input, &output);
  EXPECT_TRUE(std::ranges::equal(output.Bytes(), input.Bytes()));
  EXPECT_EQ(output.Position(), 0);
  EXPECT_LE(output.longest, 16384);
}

TEST(HttpRequest, FaultsOfTheCallersStreamsComeThrough) {
  class Refusing : public TMemoryStream {
   public:
    std::int64_t Read(void*, std::int64_t) override { throw EReadError(u"read"); }
    std::int64_t Write(const void*, std::int64_t) override { throw EWriteError(u"write"); }
  };
  HttpServer server(Always(Response(std::string(100000, 'x'))));
  Refusing stream;
  stream.SetSize(100000);
  EXPECT_THROW(THTTPRequest::DoExecuteStream(server.Url(), &stream, nullptr), EReadError);
  EXPECT_THROW(THTTPRequest::DoExecuteStream(server.Url(), nullptr, &stream), EWriteError);
  EXPECT_EQ(THTTPRequest::DoExecute(server.Url(), u"").size(), 100000u);
}

TEST(HttpRequest, DownLoadFileReplacesTheFileWholeOrNotAtAll) {
  const TemporaryFolder folder;
  const String file = folder / u"f.bin";
  const auto content = [&] { return ReadBytes(std::filesystem::path(file)); };
  const auto files = [&] {
    return std::distance(std::filesystem::directory_iterator(std::filesystem::path(folder.Path())),
                         std::filesystem::directory_iterator());
  };
  HttpServer good(Always(Response("new")));
  HttpServer missing(Always(Response("page", "", "404 Not Found")));
  HttpServer cut(Once("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\nhalf"));
  EXPECT_THROW(THTTPRequest::DownLoadFile(cut.Url(), file), EZentavoExtError);
  EXPECT_EQ(files(), 0);
  THTTPRequest::DownLoadFile(good.Url(), file);
  EXPECT_EQ(content(), "new");
  WriteBytes(std::filesystem::path(file), "old");
  EXPECT_THROW(THTTPRequest::DownLoadFile(cut.Url(), file), EZentavoExtError);
  EXPECT_THROW(THTTPRequest::DownLoadFile(u"http://", file), EZentavoError);
  EXPECT_EQ(ErrorOf<EZentavoExtError>([&] { THTTPRequest::DownLoadFile(missing.Url(), file); }),
            "[WinHTTP]: Error 404");
  EXPECT_EQ(content(), "old");
  EXPECT_EQ(files(), 1);
  EXPECT_THROW(THTTPRequest::DownLoadFile(good.Url(), folder / u"none/f"), EFCreateError);
}

// "hello" in gzip, and zeros in a stream that never ends: one literal, then copies of 258 of them.
constexpr std::string_view kGzippedHello(
    "\x1F\x8B\x08\0\0\0\0\0\0\x03\xCB\x48\xCD\xC9\xC9\x07\0\x86\xA6\x10\x36\x05\0\0\0", 25);

std::string DeflatedZeros(std::int64_t size) {
  std::string bytes = "\x78\x9C";
  int bit = 0;
  const auto put = [&](std::string_view bits) {  // in the order of the stream
    for (const char c : bits) {
      if (bit % 8 == 0) bytes += '\0';
      if (c == '1') bytes.back() = static_cast<char>(bytes.back() | (1 << (bit % 8)));
      ++bit;
    }
  };
  put("110");       // the last block, fixed codes
  put("00110000");  // a zero
  for (; size > 0; size -= 258) put("1100010100000");
  return bytes;
}

// Whether the system decodes: it says so by asking for it.
bool Decodes(HttpServer& server) {
  return !server.Requests().back().Header("Accept-Encoding").empty();
}

TEST(HttpRequest, DecodesWhatItAskedFor) {
  HttpServer server(Always(Response(kGzippedHello, "Content-Encoding: gzip\r\n")));
  HttpServer broken(Always(Response("no gzip at all", "Content-Encoding: gzip\r\n")));
  const String text = THTTPRequest::DoExecute(server.Url(), u"");
  if (!Decodes(server)) GTEST_SKIP() << "this system's service does not decode";
  EXPECT_EQ(text, u"hello");
  EXPECT_EQ(Get(broken.Url()), "[WinHTTP]: Error 12152");
  OwnConnection plain(server.Url(), 10000, true);
  EXPECT_EQ(Get(plain, plain.path), kGzippedHello);
}

TEST(HttpRequest, BombsEndAtTheLimit) {
  HttpServer bomb(Always(Response(DeflatedZeros(80 << 20), "Content-Encoding: deflate\r\n")));
  HttpServer text(Always(Response("12345")));
  OwnConnection connection(text.Url());
  THTTPRequest request(connection, connection.path);
  connection.SetMaxTextSize(5);
  EXPECT_EQ(request.Execute(u""), u"12345");
  connection.SetMaxTextSize(4);
  EXPECT_THROW(request.Execute(u""), EZentavoExtError);
  EXPECT_EQ(connection.LastError(), 12184u);

  OwnConnection bombed(bomb.Url());
  bombed.SetMaxDecodedSize(1 << 20);
  const std::string outcome = Get(bombed, bombed.path);
  if (!Decodes(bomb)) GTEST_SKIP() << "this system's service does not decode";
  EXPECT_EQ(outcome, "[WinHTTP]: Error 12184");
  EXPECT_THROW(THTTPRequest::DoExecute(bomb.Url(), u""), EZentavoExtError);  // 80 MiB of text
}

TEST(HttpRequest, GoesThroughTheProxyOfTheEnvironment) {
  if (kOnWindows) GTEST_SKIP() << "the proxy is the system's setting there";
  HttpServer proxy(Always(Response("proxied")));
  HttpServer direct(Always(Response("direct")));
  const EnvironmentVariable setting("http_proxy", ToUtf8(proxy.Url()));
  EXPECT_EQ(THTTPRequest::DoExecute(u"http://somewhere.invalid/x", u""), u"proxied");
  EXPECT_EQ(proxy.Requests().front().line, "GET http://somewhere.invalid/x HTTP/1.1");
  const EnvironmentVariable exception("no_proxy", "127.0.0.1");
  EXPECT_EQ(THTTPRequest::DoExecute(direct.Url(), u""), u"direct");
}

TEST(HttpRequest, SecureRequestsAskTheirProxyForATunnel) {
  if (kOnWindows) GTEST_SKIP() << "the proxy is the system's setting there";
  HttpServer proxy(Always(Response("", "", "502 Bad Gateway")));
  const EnvironmentVariable setting("https_proxy", ToUtf8(proxy.Url()));
  EXPECT_NE(ErrorOf([] { THTTPRequest::DoExecute(u"https://somewhere.invalid/x", u""); }), "");
  EXPECT_EQ(proxy.Requests().front().line, "CONNECT somewhere.invalid:443 HTTP/1.1");
}

}  // namespace
}  // namespace zentavo
