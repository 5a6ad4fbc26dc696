// Named memory that several processes share, and the sizes of what is mapped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "zentavo/platform/export.h"
#include "zentavo/platform/system_error.h"

namespace zentavo::platform {

// A named block of memory. Whoever opens the name first decides the size and finds zeros; the
// others get the same memory with the size it has. The name lasts until its last user has closed it
// or died; the next opening then starts anew. Movable, not copyable; closes when destroyed. Used by
// one thread at a time.
//
// A name is any text of up to about 200 units, compared by units; an empty one, one that is too
// long for the system, one with a zero unit, and one with a backslash elsewhere than in "Local\" or
// "Global\" at its start are refused. Names belong to the user ("Global\": on Windows to the whole
// machine). On Linux the memory is a file in /dev/shm that its user alone may open; a child made by
// fork uses the name like its parent.
class ZENTAVO_API SharedMemory {
 public:
  SharedMemory() = default;
  SharedMemory(SharedMemory&& other) noexcept;
  SharedMemory& operator=(SharedMemory&& other) noexcept;
  ~SharedMemory();

  // Opens `name` after closing what was open. The memory is reserved at once, so that a size that
  // the system does not have fails here and not at a later access. 0 is refused.
  SystemError Open(std::u16string_view name, std::uint32_t size);
  // The views stay.
  void Close();
  bool IsOpen() const { return handle_ != kClosed; }

  // Maps `size` bytes (0: to the end) from `offset`, a multiple of the allocation granularity, for
  // reading and writing. Returns null with `error` set where that does not lie in the memory. Give
  // the view back with UnmapView.
  void* MapView(std::uint32_t offset, std::size_t size, SystemError& error) const;

 private:
  static constexpr std::intptr_t kClosed = -1;
  std::intptr_t handle_ = kClosed;
};

ZENTAVO_API void UnmapView(void* view, std::size_t size);

// Returns the bytes from the page that holds `address` to the end of the mapped region it lies in,
// 0 when nothing is mapped there. May be called from any thread.
ZENTAVO_API std::size_t MappedSize(const void* address);

}  // namespace zentavo::platform
