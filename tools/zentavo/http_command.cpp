#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/zentavo/command.h"
#include "tools/zentavo/files.h"
#include "tools/zentavo/transfer_progress.h"
#include "zentavo/framework/number_text.h"
#include "zentavo/framework/stream.h"
#include "zentavo/http/connection.h"

namespace zentavo::tool {

namespace {

constexpr std::uint32_t kFirstFailure = 300;

struct HttpOptions {
  std::string url;
  std::string verb;
  std::vector<std::string> headers;
  std::optional<std::string> data;
  std::optional<std::string> output;
  bool status = false;
  std::optional<std::int32_t> timeout_ms;
};

// Where the body goes, piece by piece. Only what comes in order can be written.
class BodyStream : public TStream {
 public:
  BodyStream(OutputFile& file, std::int64_t total) : file_(file), progress_(total) {}

  std::int64_t Read(void*, std::int64_t) override { return 0; }
  std::int64_t Write(const void* buffer, std::int64_t count) override {
    const std::string_view bytes(static_cast<const char*>(buffer), static_cast<std::size_t>(count));
    file_.Write(bytes);
    if (!bytes.empty()) last_ = bytes.back();
    progress_.Advance(count);
    return count;
  }
  std::int64_t Seek(std::int64_t, TSeekOrigin) override { return 0; }
  void SetSize(std::int64_t) override {}

  bool EndsInLineFeed() const { return last_ == '\n'; }

 private:
  OutputFile& file_;
  TransferProgress progress_;
  char last_ = '\0';
};

String HeaderLines(const HttpOptions& options) {
  String lines;
  for (const std::string& header : options.headers) lines += FromUtf8(header) + u"\r\n";
  const bool by_default = options.headers.empty() && options.data;
  return by_default ? String(u"Content-type: application/json; charset=utf-8\r\n") : lines;
}

// The data's bytes, or its file's; null for none.
std::unique_ptr<TStream> OpenData(const std::optional<std::string>& data) {
  if (!data) return nullptr;
  if (data->starts_with('@') && *data != "@-") {
    return std::make_unique<TFileStream>(FromUtf8(data->substr(1)), fmOpenRead | fmShareDenyNone);
  }
  const std::string bytes = *data == "@-" ? ReadWholeInput("-") : *data;
  auto stream = std::make_unique<TMemoryStream>();
  stream->WriteBuffer(bytes.data(), std::ssize(bytes));
  return stream;
}

// The total is known where nothing was compressed.
std::int64_t TotalOf(const HttpExchange& request) {
  const StringView length = request.Header(u"Content-Length").value_or(u"0");
  return request.Header(u"Content-Encoding") ? 0 : StrToInt64Def(length, 0);
}

// "200 OK", of the status line.
std::string StatusOf(const HttpExchange& request) {
  const String& headers = request.RawHeaders();
  const StringView line = StringView(headers).substr(0, headers.find(u"\r\n"));
  return ToUtf8(line.substr(std::min(line.find(u' ') + 1, line.size())));
}

void SendTo(THTTPConnection& connection, HttpExchange& request, const HttpOptions& options) {
  const std::unique_ptr<TStream> data = OpenData(options.data);
  if (data) {
    connection.SendRequest(request, HeaderLines(options), *data);
  } else {
    connection.SendRequest(request, HeaderLines(options), nullptr, 0);
  }
  connection.ReceiveResponse(request);
}

// A status that tells of a failure leaves the output file as it was.
void RunHttp(const HttpOptions& options) {
  THTTPConnection connection(true);
  String path;
  connection.OpenConnectionFromUrl(FromUtf8(options.url), path);
  if (options.timeout_ms) connection.SetTimeouts(*options.timeout_ms, *options.timeout_ms);
  const std::string usual_verb = options.data ? "POST" : "GET";
  const THTTPHandle request =
      connection.OpenRequest(path, FromUtf8(options.verb.empty() ? usual_verb : options.verb));
  SendTo(connection, *request, options);
  if (options.status) PrintUtf8(StatusOf(*request));
  const bool failed = connection.LastStatus() >= kFirstFailure;
  OutputFile file(failed ? "-" : options.output.value_or("-"));
  BodyStream body(file, TotalOf(*request));
  connection.ReadResponseStream(*request, body);
  if ((failed || !options.output) && !body.EndsInLineFeed()) file.Write("\n");
  file.Commit();
  if (failed) throw Exception(u"The server answered " + FromUtf8(StatusOf(*request)));
}

}  // namespace

void AddHttpCommand(CLI::App& program) {
  auto options = std::make_shared<HttpOptions>();
  CLI::App& command = *program.add_subcommand("http", "Ask a web server and print what it answers");
  command.add_option("URL", options->url, "The address, http or https")->required();
  command.add_option("-X", options->verb, "The verb; POST with -d and GET without");
  AddRepeated(command, "-H", options->headers, "A header line, such as 'Accept: text/csv'");
  command.add_option("-d", options->data, "The text to send, or @FILE; JSON unless -H says else");
  command.add_option("-o", options->output,
                     "The file for the body, which then has no line feed added");
  command.add_flag("-i", options->status, "Print the status first");
  command.add_option("--timeout", options->timeout_ms, "Milliseconds to connect, and to wait")
      ->check(CLI::Range(1, 2147483647));
  command.callback([options] { RunHttp(*options); });
}

}  // namespace zentavo::tool
