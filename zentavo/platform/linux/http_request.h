// One exchange on libcurl. The connection's client drives all requests of the connection at once;
// what arrives for a request that nobody reads yet waits in it up to a bound, then in the server.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "zentavo/platform/linux/http_state.h"

namespace zentavo::platform {

struct CurlListCloser {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using CurlList = std::unique_ptr<curl_slist, CurlListCloser>;

// A handle with what is the same for all exchanges of a connection; null without memory.
CurlEasy NewEasy(const HttpConnection::State& connection);

// Neither copied nor moved: libcurl holds its address.
struct HttpRequest::State {
  State(std::shared_ptr<HttpConnection::State> of_connection, std::string of_path,
        std::string of_verb);
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  SystemError Send(std::u16string_view lines, HttpBody* of_body);
  SystemError Receive();
  SystemError ReadBody(const BodySink& sink);

  const std::shared_ptr<HttpConnection::State> connection;
  const std::string path;
  const std::string verb;
  const HttpTimeouts timeouts;

  std::string raw_headers;  // lines ended by CR LF
  bool headers_done = false;

 private:
  enum class Waiting { kToSend, kForHeaders, kForBody };

  static std::size_t OnHeader(char* bytes, std::size_t, std::size_t count, void* request);
  static std::size_t OnBody(char* bytes, std::size_t, std::size_t count, void* request);
  static std::size_t OnRead(char* bytes, std::size_t size, std::size_t count, void* request);
  static int OnSeek(void* request, curl_off_t offset, int origin);

  CurlEasy NewHandle() const;
  SystemError Start(std::u16string_view lines, HttpBody* of_body);
  void SetUp();
  void SetMethod(bool with_body);
  // Drives until `ready` or the end of the exchange; returns its error.
  template <typename Ready>
  SystemError DriveUntil(Waiting waiting, Ready ready);
  bool Prolongs(Waiting waiting);
  bool Perform();
  void WaitFor(int milliseconds) const;
  bool TakeHeader(std::string_view line);
  std::size_t TakeBody(std::span<const std::byte> piece);
  std::size_t FillBody(std::span<std::byte> buffer);
  SystemError TakeWaiting(const BodySink& into);
  bool NewlyConnected() const;
  bool Connected() const;
  bool UploadedMore();
  bool Sent() const;
  void Fail(SystemError error);
  SystemError Outcome();

  CurlEasy easy_;
  CurlList headers_;
  HttpBody* body_ = nullptr;
  std::uint64_t body_size_ = 0;
  std::uint64_t body_sent_ = 0;     // handed to libcurl
  curl_off_t uploaded_ = 0;         // to the server, as of the last look
  std::size_t header_bytes_ = 0;    // of all blocks and trailers
  bool block_done_ = false;         // an interim answer's headers are complete
  std::vector<std::byte> waiting_;  // of the body, read by nobody yet
  bool paused_ = false;
  const BodySink* sink_ = nullptr;
  bool body_taken_ = false;  // by the sink, since the last look
  bool added_ = false;       // to the connection's client
  bool ended_ = false;
  CURLcode result_ = CURLE_OK;
  SystemError failure_ = 0;    // ours, before libcurl's
  std::exception_ptr thrown_;  // by the body or the sink
  std::array<char, CURL_ERROR_SIZE> error_text_{};
};

}  // namespace zentavo::platform
