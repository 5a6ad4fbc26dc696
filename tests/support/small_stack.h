// Runs something on a thread whose stack is small, as those of thread pools are.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <functional>
#include <stdexcept>

namespace zentavo::testing {

inline constexpr std::size_t kSmallStackBytes = 256 * 1024;

inline void RunOnSmallStack(const std::function<void()>& work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kSmallStackBytes);
  pthread_t thread;
  const int failure = pthread_create(
      &thread, &attributes,
      [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
      },
      const_cast<std::function<void()>*>(&work));
  pthread_attr_destroy(&attributes);
  if (failure != 0) throw std::runtime_error("cannot start a thread");
  pthread_join(thread, nullptr);
}

}  // namespace zentavo::testing
