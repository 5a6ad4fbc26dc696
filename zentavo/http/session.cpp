#include "zentavo/http/session.h"

#include <mutex>

namespace zentavo {

namespace {

// Marks a thread's time-outs as not set.
constexpr std::int32_t kUnsetSend = 30000;

constinit thread_local platform::HttpTimeouts thread_timeouts{.send_ms = kUnsetSend};

struct SharedSession {
  std::mutex mutex;  // guards `session`
  std::shared_ptr<platform::HttpSession> session;
};

// Never destroyed: the unit's end comes behind the destructors.
SharedSession& Shared() {
  static auto& shared = *new SharedSession;
  return shared;
}

}  // namespace

std::shared_ptr<platform::HttpSession> OpenHttpSession(bool plain, platform::SystemError& error) {
  platform::HttpSessionOptions options;
  options.decode = !plain;
  if (!plain) options.user_agent = u"Zentavo";
  if (thread_timeouts.send_ms != kUnsetSend) options.timeouts = thread_timeouts;
  return platform::HttpSession::Open(options, error);
}

std::shared_ptr<platform::HttpSession> SharedHttpSession(platform::SystemError& error) {
  SharedSession& shared = Shared();
  const std::lock_guard lock(shared.mutex);
  error = 0;
  if (!shared.session) shared.session = OpenHttpSession(false, error);
  return shared.session;
}

void FinalizeHttp() {
  SharedSession& shared = Shared();
  const std::lock_guard lock(shared.mutex);
  shared.session.reset();
}

void SetThreadHttpTimeouts(std::int32_t connect_ms, std::int32_t send_ms, std::int32_t receive_ms) {
  thread_timeouts = {0, connect_ms, send_ms, receive_ms};
}

}  // namespace zentavo
