#include "zentavo/platform/linux/http_request.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <limits>
#include <utility>

#include "zentavo/platform/linux/http_errors.h"
#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostHeaderBytes = 65536;  // the other platform's default
constexpr std::size_t kMostWaiting = 65536;      // bytes of a body that nobody reads yet
constexpr std::size_t kPiece = 16384;
constexpr long kReceiveBuffer = 65536;  // bytes; a larger one would be mapped anew each time

long Endless(std::int32_t milliseconds) {
  return milliseconds > 0 ? milliseconds : std::numeric_limits<std::int32_t>::max();
}

// Adds `line`; false without memory.
bool Append(CurlList& list, const std::string& line) {
  curl_slist* const extended = curl_slist_append(list.get(), line.c_str());
  if (extended == nullptr) return false;
  static_cast<void>(list.release());
  list.reset(extended);
  return true;
}

// A header without a value is written with ';' here; with ':' alone it would take one away.
std::string ListForm(std::string_view line) {
  std::string form(line);
  const std::size_t last = form.find_last_not_of(" \t");
  if (last != form.npos && form[last] == ':' && form.find(':') == last) {
    form.resize(last);
    form += ';';
  }
  return form;
}

CurlList HeaderList(std::string_view lines) {
  CurlList list;
  while (!lines.empty()) {
    const std::size_t end = lines.find("\r\n");
    if (!Append(list, ListForm(lines.substr(0, end)))) break;
    lines.remove_prefix(end == lines.npos ? lines.size() : end + 2);
  }
  return list;
}

// Takes away what libcurl would add by itself.
bool AppendRefusals(CurlList& list, bool with_body) {
  return Append(list, "Accept:") &&
         (!with_body || (Append(list, "Expect:") && Append(list, "Content-Type:")));
}

bool IsAscii(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// PathBytes, and the way back, quickly for what requests are made of.
std::string BytesOf(std::u16string_view text) {
  return IsAscii(text) ? std::string(text.begin(), text.end()) : PathBytes(text);
}
std::u16string TextOf(std::string_view bytes) {
  const bool ascii = std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte >= 0; });
  return ascii ? std::u16string(bytes.begin(), bytes.end()) : PathFromBytes(bytes);
}

std::string_view WithoutBreak(std::string_view line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Tells of a status line whether its answer is the last one: none of 1xx but a change of protocol.
bool IsFinal(std::string_view status_line) {
  const std::size_t blank = status_line.find(' ');
  const std::string_view status =
      blank == status_line.npos ? std::string_view() : status_line.substr(blank + 1, 3);
  return !status.starts_with('1') || status == "101";
}

}  // namespace

CurlEasy NewEasy(const HttpConnection::State& connection) {
  CurlEasy easy(curl_easy_init());
  if (!easy) return easy;
  const HttpSession::State& session = *connection.session;
  const auto set = [&](auto option, auto value) { curl_easy_setopt(easy.get(), option, value); };
  set(CURLOPT_NOSIGNAL, 1L);
  set(CURLOPT_NOPROGRESS, 1L);
  set(CURLOPT_PROTOCOLS_STR, "http,https");
  set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  set(CURLOPT_PATH_AS_IS, 1L);
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  set(CURLOPT_QUICK_EXIT, 1L);  // a slow name server does not hold up a time-out
  set(CURLOPT_BUFFERSIZE, kReceiveBuffer);
  set(CURLOPT_SHARE, session.cookies.get());
  set(CURLOPT_COOKIEFILE, "");
  if (!session.user_agent.empty()) set(CURLOPT_USERAGENT, session.user_agent.c_str());
  if (session.decode) set(CURLOPT_ACCEPT_ENCODING, "gzip, deflate");
  const CertificateStore store = TrustedCertificates();
  if (store.file != nullptr) set(CURLOPT_CAINFO, store.file);
  if (store.folder != nullptr) set(CURLOPT_CAPATH, store.folder);
  return easy;
}

HttpBody::~HttpBody() = default;

HttpRequest::State::State(std::shared_ptr<HttpConnection::State> of_connection, std::string of_path,
                          std::string of_verb)
    : connection(std::move(of_connection)),
      path(std::move(of_path)),
      verb(std::move(of_verb)),
      timeouts(connection->session->Timeouts()) {}

HttpRequest::State::~State() {
  if (added_) curl_multi_remove_handle(connection->multi.get(), easy_.get());
  if (easy_ && !connection->spare && !NewlyConnected()) connection->spare = std::move(easy_);
}

CurlEasy HttpRequest::State::NewHandle() const {
  CurlEasy easy = NewEasy(*connection);
  curl_easy_setopt(easy.get(), CURLOPT_HEADERFUNCTION, OnHeader);
  curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, OnBody);
  curl_easy_setopt(easy.get(), CURLOPT_READFUNCTION, OnRead);
  curl_easy_setopt(easy.get(), CURLOPT_SEEKFUNCTION, OnSeek);
  return easy;
}

SystemError HttpRequest::State::Start(std::u16string_view lines, HttpBody* of_body) {
  if (easy_) return kHttpInternalError;  // sent already
  easy_ = connection->spare ? std::move(connection->spare) : NewHandle();
  if (!easy_) return kHttpInternalError;
  body_ = of_body;
  body_size_ = body_ != nullptr ? body_->Size() : 0;
  const bool with_body = body_size_ != 0 || verb == "POST" || verb == "PUT";
  headers_ = HeaderList(BytesOf(lines));
  if (!AppendRefusals(headers_, with_body)) return kHttpInternalError;
  SetUp();
  SetMethod(with_body);
  added_ = curl_multi_add_handle(connection->multi.get(), easy_.get()) == CURLM_OK;
  return added_ && Perform() ? 0 : kHttpInternalError;
}

void HttpRequest::State::SetUp() {
  const auto set = [&](auto option, auto value) { curl_easy_setopt(easy_.get(), option, value); };
  set(CURLOPT_URL, (connection->origin + path).c_str());
  set(CURLOPT_HTTPHEADER, headers_.get());
  set(CURLOPT_CONNECTTIMEOUT_MS, Endless(timeouts.connect_ms));
  set(CURLOPT_ERRORBUFFER, error_text_.data());
  set(CURLOPT_PRIVATE, this);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_WRITEDATA, this);
  set(CURLOPT_READDATA, this);
  set(CURLOPT_SEEKDATA, this);
}

// Each request sets the method anew, whatever the spare handle did before.
void HttpRequest::State::SetMethod(bool with_body) {
  const auto set = [&](auto option, auto value) { curl_easy_setopt(easy_.get(), option, value); };
  set(CURLOPT_NOBODY, 0L);
  if (with_body) {
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body_size_));
  } else if (verb == "HEAD") {
    set(CURLOPT_NOBODY, 1L);
  } else {
    set(CURLOPT_HTTPGET, 1L);
  }
  set(CURLOPT_CUSTOMREQUEST, verb.c_str());
}

// Lets every request of the connection go on, and notes which have ended.
bool HttpRequest::State::Perform() {
  CURLM* const multi = connection->multi.get();
  int running = 0;
  if (curl_multi_perform(multi, &running) != CURLM_OK) return false;
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi, &left)) {
    if (message->msg != CURLMSG_DONE) continue;
    State* request = nullptr;
    curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &request);
    request->result_ = message->data.result;
    request->ended_ = true;
    curl_multi_remove_handle(multi, request->easy_.get());
    request->added_ = false;
  }
  return true;
}

void HttpRequest::State::WaitFor(int milliseconds) const {
  curl_multi_poll(connection->multi.get(), nullptr, 0, milliseconds, nullptr);
}

// libcurl gives up after several retries on connections that the server had closed, and counts
// those of all exchanges of a handle: one that had to connect is not used again.
bool HttpRequest::State::NewlyConnected() const {
  long connects = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_NUM_CONNECTS, &connects);
  return connects != 0;
}

bool HttpRequest::State::Connected() const {
  curl_off_t time = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_PRETRANSFER_TIME_T, &time);
  return time != 0;
}

// Since the last look.
bool HttpRequest::State::UploadedMore() {
  curl_off_t count = 0;
  curl_easy_getinfo(easy_.get(), CURLINFO_SIZE_UPLOAD_T, &count);
  return std::exchange(uploaded_, count) != count;
}

bool HttpRequest::State::Sent() const {
  return headers_done || (body_sent_ == body_size_ && Connected());
}

template <typename Ready>
SystemError HttpRequest::State::DriveUntil(Waiting waiting, Ready ready) {
  constexpr std::int64_t kLongestWait = 3'600'000;  // milliseconds
  const std::int32_t limit = waiting == Waiting::kToSend ? timeouts.send_ms : timeouts.receive_ms;
  const auto allowed = std::chrono::milliseconds(Endless(limit));
  Clock::time_point deadline = Clock::now() + allowed;
  while (!ended_ && !ready()) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) {
      Fail(kHttpTimeout);
      break;
    }
    WaitFor(static_cast<int>(std::min<std::int64_t>(left, kLongestWait)));
    if (!Perform()) Fail(kHttpInternalError);
    if (Prolongs(waiting)) deadline = Clock::now() + allowed;
  }
  return Outcome();
}

// Whether a step that was made while `waiting` lets the time-out start over. Connecting has
// libcurl's own. What other requests of the connection do is nothing to this one, and of a body
// only content counts: what stands around chunks, or within compression, can go on for ever.
bool HttpRequest::State::Prolongs(Waiting waiting) {
  switch (waiting) {
    case Waiting::kToSend: return UploadedMore() || !Connected();
    case Waiting::kForHeaders: return false;  // one time for all of them
    case Waiting::kForBody: return std::exchange(body_taken_, false);
  }
  return false;
}

// Ends the exchange; its connection is given up.
void HttpRequest::State::Fail(SystemError error) {
  if (failure_ == 0) failure_ = error;
  if (added_) curl_multi_remove_handle(connection->multi.get(), easy_.get());
  added_ = false;
  ended_ = true;
}

SystemError HttpRequest::State::Outcome() {
  if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
  if (failure_ != 0 || !ended_) return failure_;
  return HttpErrorOf(result_, error_text_.data());
}

std::size_t HttpRequest::State::OnHeader(char* bytes, std::size_t, std::size_t count,
                                         void* request) {
  return static_cast<State*>(request)->TakeHeader({bytes, count}) ? count : 0;
}

bool HttpRequest::State::TakeHeader(std::string_view line) {
  header_bytes_ += line.size();
  if (header_bytes_ > kMostHeaderBytes) {
    failure_ = kHttpHeaderSizeOverflow;
    return false;
  }
  if (headers_done) return true;  // a trailer, behind the body
  const std::string_view text = WithoutBreak(line);
  if (text.empty()) {
    headers_done = IsFinal(raw_headers);
    block_done_ = true;
    raw_headers.append("\r\n");
    return true;
  }
  if (std::exchange(block_done_, false)) raw_headers.clear();
  raw_headers.append(text).append("\r\n");
  return true;
}

std::size_t HttpRequest::State::OnBody(char* bytes, std::size_t, std::size_t count, void* request) {
  return static_cast<State*>(request)->TakeBody(std::as_bytes(std::span(bytes, count)));
}

std::size_t HttpRequest::State::TakeBody(std::span<const std::byte> piece) {
  if (sink_ == nullptr) {
    if (waiting_.size() + piece.size() > kMostWaiting) {
      paused_ = true;
      return CURL_WRITEFUNC_PAUSE;
    }
    waiting_.insert(waiting_.end(), piece.begin(), piece.end());
    return piece.size();
  }
  try {
    failure_ = (*sink_)(piece);
    body_taken_ = true;
  } catch (...) {
    thrown_ = std::current_exception();
  }
  return failure_ == 0 && !thrown_ ? piece.size() : CURL_WRITEFUNC_ERROR;
}

std::size_t HttpRequest::State::OnRead(char* bytes, std::size_t size, std::size_t count,
                                       void* request) {
  return static_cast<State*>(request)->FillBody(
      std::as_writable_bytes(std::span(bytes, size * count)));
}

std::size_t HttpRequest::State::FillBody(std::span<std::byte> buffer) {
  const std::uint64_t left = body_size_ - body_sent_;
  buffer = buffer.first(static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), left)));
  if (buffer.empty()) return 0;
  try {
    const std::size_t count = body_->Read(buffer);
    body_sent_ += count;
    if (count != 0) return count;
    failure_ = kHttpConnectionError;
  } catch (...) {
    thrown_ = std::current_exception();
  }
  return CURL_READFUNC_ABORT;
}

// libcurl starts over only, to send the body again.
int HttpRequest::State::OnSeek(void* request, curl_off_t offset, int origin) {
  auto& self = *static_cast<State*>(request);
  if (offset != 0 || origin != SEEK_SET) return CURL_SEEKFUNC_FAIL;
  try {
    if (self.body_ != nullptr) self.body_->Rewind();
    self.body_sent_ = 0;
    return CURL_SEEKFUNC_OK;
  } catch (...) {
    self.thrown_ = std::current_exception();
    return CURL_SEEKFUNC_FAIL;
  }
}

SystemError HttpRequest::State::TakeWaiting(const BodySink& into) {
  const std::vector<std::byte> taken = std::exchange(waiting_, {});
  std::span<const std::byte> rest = taken;
  while (!rest.empty()) {
    const auto piece = rest.first(std::min(rest.size(), kPiece));
    if (const SystemError error = into(piece)) return error;
    rest = rest.subspan(piece.size());
  }
  return 0;
}

SystemError HttpRequest::State::Send(std::u16string_view lines, HttpBody* of_body) {
  connection->Notify(kHttpStatusSendingRequest);
  if (const SystemError error = Start(lines, of_body)) return error;
  const SystemError error = DriveUntil(Waiting::kToSend, [&] { return Sent(); });
  if (headers_done || error == 0) {
    const auto bytes = static_cast<std::uint32_t>(body_sent_);
    connection->Notify(kHttpStatusRequestSent, &bytes, sizeof bytes);
    return 0;
  }
  return error;
}

// An answer counts even where its body, or the rest of the request, has failed meanwhile.
SystemError HttpRequest::State::Receive() {
  if (!easy_) return kHttpInternalError;  // not sent
  connection->Notify(kHttpStatusReceivingResponse);
  const SystemError error = DriveUntil(Waiting::kForHeaders, [&] { return headers_done; });
  if (!headers_done) return error != 0 ? error : kHttpInvalidResponse;
  const auto bytes = static_cast<std::uint32_t>(header_bytes_);
  connection->Notify(kHttpStatusResponseReceived, &bytes, sizeof bytes);
  return 0;
}

SystemError HttpRequest::State::ReadBody(const BodySink& sink) {
  if (!headers_done) return kHttpInternalError;
  if (const SystemError error = TakeWaiting(sink)) {
    Fail(error);
    return error;
  }
  sink_ = &sink;
  if (std::exchange(paused_, false) && !ended_) curl_easy_pause(easy_.get(), CURLPAUSE_CONT);
  if (failure_ != 0 || thrown_) Fail(failure_);
  return DriveUntil(Waiting::kForBody, [] { return false; });
}

HttpRequest::HttpRequest(std::unique_ptr<State> state) : state_(std::move(state)) {}
HttpRequest::~HttpRequest() = default;

std::unique_ptr<HttpRequest> HttpRequest::Open(const HttpConnection& connection,
                                               std::u16string_view path, std::u16string_view verb,
                                               SystemError& error) {
  error = 0;
  return std::unique_ptr<HttpRequest>(
      new HttpRequest(std::make_unique<State>(connection.Native(), BytesOf(path), BytesOf(verb))));
}

SystemError HttpRequest::Send(std::u16string_view headers, HttpBody* body) {
  return state_->Send(headers, body);
}

SystemError HttpRequest::Receive() {
  return state_->Receive();
}

std::u16string HttpRequest::RawHeaders() const {
  return TextOf(state_->raw_headers);
}

SystemError HttpRequest::ReadBody(const BodySink& sink) {
  return state_->ReadBody(sink);
}

}  // namespace zentavo::platform
