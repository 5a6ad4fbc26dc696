// How the tests ask a server, and what came of it.
#pragma once

#include <string>

#include "zentavo/foundation/errors.h"
#include "zentavo/http/connection.h"

namespace zentavo::testing {

inline std::string BytesOf(const TMemoryStream& stream) {
  const auto bytes = stream.Bytes();
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// To the server of an address, on a session of its own whose connections nobody else uses.
class OwnConnection : public THTTPConnection {
 public:
  explicit OwnConnection(StringView url, std::int32_t receive_ms = 10000, bool plain = false)
      : THTTPConnection(true, plain) {
    OpenConnectionFromUrl(url, path);
    SetTimeouts(receive_ms, 10000);
  }

  // Whether a request with `body` and `lines` succeeds; its body and headers are kept.
  bool Ask(StringView verb = {}, std::string_view body = {}, StringView lines = {}) {
    TMemoryStream input;
    input.WriteBuffer(body.data(), std::ssize(body));
    TMemoryStream output;
    const bool success = Request(path, &input, &output, lines, headers, verb);
    answer = BytesOf(output);
    return success;
  }

  String path;
  std::string answer;
  String headers;
};

// The body of a GET; of a failed exchange the error's text, which `connection` keeps too.
inline std::string Get(THTTPConnection& connection, StringView path) {
  TMemoryStream output;
  String headers;
  try {
    connection.Request(path, nullptr, nullptr, {}, headers, {}, &output);
    return BytesOf(output);
  } catch (const EZentavoExtError& error) {
    const bool kept = static_cast<std::uint32_t>(error.ErrorId()) == connection.LastError();
    return kept ? error.what() : "LastError is another";
  }
}

inline std::string Get(StringView url, std::int32_t receive_ms = 10000) {
  OwnConnection connection(url, receive_ms);
  return Get(connection, connection.path);
}

}  // namespace zentavo::testing
