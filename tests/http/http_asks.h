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

// On a session of its own, whose connections nobody else uses.
inline std::string Get(StringView url, std::int32_t receive_ms = 10000) {
  THTTPConnection connection(true);
  String path;
  connection.OpenConnectionFromUrl(url, path);
  connection.SetTimeouts(receive_ms, 10000);
  return Get(connection, path);
}

}  // namespace zentavo::testing
