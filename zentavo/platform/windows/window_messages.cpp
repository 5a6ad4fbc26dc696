#include "zentavo/platform/window_messages.h"

#include <utility>

#include "zentavo/platform/message_handlers.h"
#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

constexpr const wchar_t* kClassName = L"ZentavoMessageWindow";

HWND SystemWindow(WindowHandle window) {
  return reinterpret_cast<HWND>(window);
}

LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const auto handler = FindMessageHandler(reinterpret_cast<WindowHandle>(window));
  return handler ? (*handler)(message, wparam, lparam)
                 : DefWindowProcW(window, message, wparam, lparam);
}

// The module that holds OnMessage. The class belongs to it, so that two modules with this library
// inside keep apart.
HINSTANCE OwnModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<const wchar_t*>(&OnMessage), &module);
  return module;
}

// Registering again, after the module was unloaded and loaded, does no harm.
HINSTANCE RegisterClassOnce() {
  static const HINSTANCE module = [] {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = OnMessage;
    description.hInstance = OwnModule();
    description.lpszClassName = kClassName;
    RegisterClassExW(&description);
    return description.hInstance;
  }();
  return module;
}

}  // namespace

std::intptr_t SendWindowMessage(WindowHandle window, std::uint32_t message, std::uintptr_t wparam,
                                std::intptr_t lparam) {
  return SendMessageW(SystemWindow(window), message, wparam, lparam);
}

WindowHandle OpenMessageWindow(MessageHandler handler) {
  const HWND created = CreateWindowExW(0, kClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                       RegisterClassOnce(), nullptr);
  const auto window = reinterpret_cast<WindowHandle>(created);
  if (window != 0) AddMessageHandler(window, std::move(handler));
  return window;
}

void CloseMessageWindow(WindowHandle window) {
  RemoveMessageHandler(window);
  DestroyWindow(SystemWindow(window));
}

}  // namespace zentavo::platform
