#include "zentavo/framework/component.h"

#include <algorithm>
#include <string>
#include <utility>

#include "zentavo/framework/exception.h"

namespace zentavo {

TComponent::TComponent(String name) : FName(std::move(name)) {}

TComponent::~TComponent() {
  while (!FComponents.empty()) {
    // Off the list first: its destructor may look at its owner.
    const std::unique_ptr<TComponent> last = std::move(FComponents.back());
    FComponents.pop_back();
  }
}

void TComponent::SetName(String name) {
  FName = std::move(name);
}

TComponent& TComponent::InsertComponent(std::unique_ptr<TComponent> component) {
  TComponent& inserted = *component;
  FComponents.push_back(std::move(component));
  inserted.FOwner = this;
  return inserted;
}

std::unique_ptr<TComponent> TComponent::RemoveComponent(TComponent& component) {
  const auto place = std::find_if(FComponents.begin(), FComponents.end(),
                                  [&](const auto& owned) { return owned.get() == &component; });
  if (place == FComponents.end()) return nullptr;
  std::unique_ptr<TComponent> removed = std::move(*place);
  FComponents.erase(place);
  removed->FOwner = nullptr;
  return removed;
}

TComponent& TComponent::Components(std::size_t index) const {
  if (index >= FComponents.size()) {
    throw EListError(u"List index out of bounds (" + FromUtf8(std::to_string(index)) + u")");
  }
  return *FComponents[index];
}

TComponent* TComponent::FindComponent(StringView name) const {
  const auto place = std::find_if(FComponents.begin(), FComponents.end(),
                                  [&](const auto& owned) { return SameText(owned->Name(), name); });
  return place == FComponents.end() ? nullptr : place->get();
}

}  // namespace zentavo
