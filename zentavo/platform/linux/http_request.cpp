#include "zentavo/platform/linux/http_request.h"

#include <utility>

#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

HttpBody::~HttpBody() = default;

HttpRequest::State::State(std::shared_ptr<HttpConnection::State> of_connection, std::string of_path,
                          std::string of_verb)
    : connection(std::move(of_connection)),
      path(std::move(of_path)),
      verb(std::move(of_verb)),
      timeouts(connection->session->Timeouts()) {}

HttpRequest::State::~State() = default;

HttpRequest::HttpRequest(std::unique_ptr<State> state) : state_(std::move(state)) {}
HttpRequest::~HttpRequest() = default;

std::unique_ptr<HttpRequest> HttpRequest::Open(const HttpConnection& connection,
                                               std::u16string_view path, std::u16string_view verb,
                                               SystemError& error) {
  error = 0;
  return std::unique_ptr<HttpRequest>(new HttpRequest(
      std::make_unique<State>(connection.Native(), PathBytes(path), PathBytes(verb))));
}

SystemError HttpRequest::IgnoreClientCertificate() {
  return 0;  // none is ever sent
}

SystemError HttpRequest::AskForWebSocket() {
  state_->web_socket = true;
  return 0;
}

}  // namespace zentavo::platform
