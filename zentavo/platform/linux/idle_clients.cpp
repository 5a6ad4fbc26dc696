#include "zentavo/platform/linux/idle_clients.h"

#include <algorithm>
#include <utility>

namespace zentavo::platform {

IdleClients& IdleClients::Instance() {
  struct Closer {
    IdleClients& clients;
    ~Closer() { clients.Close(); }
  };
  // Never destroyed: sessions may end behind the destructors.
  static IdleClients& clients = *new IdleClients;
  static const CURLcode initialised = curl_global_init(CURL_GLOBAL_DEFAULT);
  static const Closer closer{clients};
  static_cast<void>(initialised);
  return clients;
}

CurlMulti IdleClients::Take(const void* session, const std::string& origin) {
  {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(idle_.rbegin(), idle_.rend(), [&](const Idle& idle) {
      return idle.session == session && idle.origin == origin;
    });
    if (found != idle_.rend()) {
      CurlMulti client = std::move(found->client);
      idle_.erase(std::next(found).base());
      return client;
    }
  }
  return CurlMulti(curl_multi_init());
}

void IdleClients::Give(const void* session, const std::string& origin, CurlMulti client) {
  CurlMulti closed;  // behind the lock
  const std::lock_guard lock(mutex_);
  if (closed_) {
    closed = std::move(client);
    return;
  }
  if (idle_.size() == kMost) {
    closed = std::move(idle_.front().client);
    idle_.erase(idle_.begin());
  }
  idle_.push_back({session, origin, std::move(client)});
}

void IdleClients::Drop(const void* session) {
  std::vector<Idle> closed;  // behind the lock
  const std::lock_guard lock(mutex_);
  const auto dropped = std::stable_partition(
      idle_.begin(), idle_.end(), [&](const Idle& idle) { return idle.session != session; });
  std::move(dropped, idle_.end(), std::back_inserter(closed));
  idle_.erase(dropped, idle_.end());
}

void IdleClients::Close() {
  std::vector<Idle> closed;  // behind the lock
  const std::lock_guard lock(mutex_);
  closed.swap(idle_);
  closed_ = true;
}

}  // namespace zentavo::platform
