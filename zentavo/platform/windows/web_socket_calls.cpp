#include "zentavo/platform/windows/web_socket_calls.h"

#include <utility>

#include "zentavo/platform/thread_pool.h"

namespace zentavo::platform {

namespace {

struct Work {
  SharedCalls calls;
  WebSocketCalls::Call call;
  bool attended;
};

void Run(void* context) {
  const std::unique_ptr<Work> work(static_cast<Work*>(context));
  const DWORD result = work->call(*work->calls);
  if (!work->attended) return;
  work->calls->result = result;
  SetEvent(work->calls->done);
}

bool Queue(std::unique_ptr<Work> work) {
  if (!QueueSystemWork(Run, work.get())) return false;
  static_cast<void>(work.release());  // the pool's now
  return true;
}

}  // namespace

WebSocketCalls::WebSocketCalls(std::shared_ptr<HttpConnection::State> of_connection,
                               HINTERNET socket)
    : connection(std::move(of_connection)),
      handle(socket),
      done(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

WebSocketCalls::~WebSocketCalls() {
  if (done != nullptr) CloseHandle(done);
}

DWORD SendCall(WebSocketCalls& calls) {
  return SystemWebSockets().send(calls.handle.get(), WINHTTP_WEB_SOCKET_BINARY_MESSAGE_BUFFER_TYPE,
                                 calls.outgoing.empty() ? nullptr : calls.outgoing.data(),
                                 static_cast<DWORD>(calls.outgoing.size()));
}

DWORD ReceiveCall(WebSocketCalls& calls) {
  return SystemWebSockets().receive(calls.handle.get(), calls.incoming.data(),
                                    static_cast<DWORD>(calls.incoming.size()), &calls.received,
                                    &calls.type);
}

DWORD CloseCall(WebSocketCalls& calls) {
  return SystemWebSockets().close(calls.handle.get(), calls.close_status, nullptr, 0);
}

DWORD ShutdownCall(WebSocketCalls& calls) {
  return SystemWebSockets().shutdown(calls.handle.get(), calls.close_status, nullptr, 0);
}

SystemError RunWithin(std::uint32_t timeout_ms, const SharedCalls& calls,
                      WebSocketCalls::Call call) {
  if (!Queue(std::make_unique<Work>(Work{calls, call, true}))) return ERROR_NOT_ENOUGH_MEMORY;
  const DWORD wait = WaitForSingleObject(calls->done, timeout_ms != 0 ? timeout_ms : INFINITE);
  return wait == WAIT_OBJECT_0 ? calls->result : kHttpTimeout;
}

void RunUnattended(const SharedCalls& calls, WebSocketCalls::Call call) {
  Queue(std::make_unique<Work>(Work{calls, call, false}));
}

}  // namespace zentavo::platform
