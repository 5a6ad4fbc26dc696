// What stands behind the HTTP handles, for the other users of a connection within this folder.
#pragma once

#include <windows.h>

#include <winhttp.h>

#include <utility>

#include "zentavo/platform/http.h"

namespace zentavo::platform {

// Owns one WinHTTP handle. Movable; closes when destroyed.
class InternetHandle {
 public:
  InternetHandle() = default;
  explicit InternetHandle(HINTERNET handle) : handle_(handle) {}
  InternetHandle(InternetHandle&& other) noexcept
      : handle_(std::exchange(other.handle_, nullptr)) {}
  InternetHandle& operator=(InternetHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~InternetHandle() {
    if (handle_ != nullptr) WinHttpCloseHandle(handle_);
  }

  HINTERNET get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  HINTERNET handle_ = nullptr;
};

struct HttpSession::State {
  InternetHandle handle;
  bool decodes = false;  // the system takes compressed bodies apart
};

struct HttpConnection::State {
  std::shared_ptr<HttpSession::State> session;
  HttpEndpoint endpoint;
  StatusCallback callback;
  InternetHandle handle;  // destroyed before the callback
};

struct HttpRequest::State {
  bool RetryWithoutCertificate(SystemError error) const;
  SystemError Send(std::u16string_view headers, HttpBody* body) const;
  // The bytes of the body that must arrive.
  std::uint64_t ExpectedSize() const;

  std::shared_ptr<HttpConnection::State> connection;
  InternetHandle handle;
  std::u16string verb;
};

}  // namespace zentavo::platform
