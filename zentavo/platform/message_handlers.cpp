#include "zentavo/platform/message_handlers.h"

#include <mutex>
#include <unordered_map>
#include <utility>

namespace zentavo::platform {

namespace {

struct Table {
  std::mutex mutex;  // guards handlers; never held while a handler runs or is destroyed
  std::unordered_map<WindowHandle, std::shared_ptr<const MessageHandler>> handlers;
};

Table& Handlers() {
  static Table table;
  return table;
}

}  // namespace

void AddMessageHandler(WindowHandle window, MessageHandler handler) {
  auto shared = std::make_shared<const MessageHandler>(std::move(handler));
  Table& table = Handlers();
  const std::scoped_lock lock(table.mutex);
  table.handlers[window] = std::move(shared);
}

void RemoveMessageHandler(WindowHandle window) {
  std::shared_ptr<const MessageHandler> removed;
  Table& table = Handlers();
  const std::scoped_lock lock(table.mutex);
  const auto found = table.handlers.find(window);
  if (found == table.handlers.end()) return;
  removed = std::move(found->second);
  table.handlers.erase(found);
}

std::shared_ptr<const MessageHandler> FindMessageHandler(WindowHandle window) {
  Table& table = Handlers();
  const std::scoped_lock lock(table.mutex);
  const auto found = table.handlers.find(window);
  return found != table.handlers.end() ? found->second : nullptr;
}

}  // namespace zentavo::platform
