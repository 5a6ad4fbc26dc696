#include "zentavo/platform/windows/pin_library.h"

#include <windows.h>

namespace zentavo::platform {

namespace {

bool Pin() {
  HMODULE module = nullptr;
  const auto address = reinterpret_cast<const wchar_t*>(&PinLibrary);
  return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            address, &module) != 0;
}

}  // namespace

void PinLibrary() {
  static const bool pinned = Pin();
  static_cast<void>(pinned);
}

}  // namespace zentavo::platform
