#include "zentavo/platform/files.h"

#include <utility>

namespace zentavo::platform {

File::File(File&& other) noexcept : handle_(std::exchange(other.handle_, kClosed)) {}

File& File::operator=(File&& other) noexcept {
  if (this != &other) {
    Close();
    handle_ = std::exchange(other.handle_, kClosed);
  }
  return *this;
}

File::~File() {
  Close();
}

}  // namespace zentavo::platform
