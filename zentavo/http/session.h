// The HTTP sessions of the process: one that is shared, and those that connections own.
#pragma once

#include <cstdint>
#include <memory>

#include "zentavo/platform/http.h"

namespace zentavo {

// Opens a session with the calling thread's time-outs: agent "Zentavo", bodies decoded; with
// `plain` no agent and nothing decoded. Null and `error` when the system refuses.
std::shared_ptr<platform::HttpSession> OpenHttpSession(bool plain, platform::SystemError& error);

// The process's session, opened at the first use.
std::shared_ptr<platform::HttpSession> SharedHttpSession(platform::SystemError& error);
// Gives the shared session up; those who have it keep it.
void FinalizeHttp();

// For the sessions that the calling thread opens from now on; nothing while `send_ms` is 30000.
void SetThreadHttpTimeouts(std::int32_t connect_ms, std::int32_t send_ms, std::int32_t receive_ms);

}  // namespace zentavo
