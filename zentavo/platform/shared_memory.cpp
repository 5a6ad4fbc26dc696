#include "zentavo/platform/shared_memory.h"

#include <utility>

namespace zentavo::platform {

SharedMemory::SharedMemory(SharedMemory&& other) noexcept
    : handle_(std::exchange(other.handle_, kClosed)) {}

SharedMemory& SharedMemory::operator=(SharedMemory&& other) noexcept {
  if (this != &other) {
    Close();
    handle_ = std::exchange(other.handle_, kClosed);
  }
  return *this;
}

SharedMemory::~SharedMemory() {
  Close();
}

}  // namespace zentavo::platform
