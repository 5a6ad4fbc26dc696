// Named objects that may own others.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "zentavo/framework/object.h"
#include "zentavo/framework/text.h"

namespace zentavo {

// A named object. A component owns those that were handed to it and destroys them, last one first,
// before it is destroyed itself. Neither copied nor moved.
class ZENTAVO_API TComponent : public TObject {
 public:
  explicit TComponent(String name = {});
  TComponent(const TComponent&) = delete;
  TComponent& operator=(const TComponent&) = delete;
  ~TComponent() override;

  const String& Name() const { return FName; }
  void SetName(String name);

  // The component that owns this one, null when its lifetime is the caller's business.
  TComponent* Owner() const { return FOwner; }

  // Takes ownership of `component`, which must not be null, and returns it.
  TComponent& InsertComponent(std::unique_ptr<TComponent> component);
  // Hands `component` back to the caller; null when it is not owned here.
  std::unique_ptr<TComponent> RemoveComponent(TComponent& component);

  std::size_t ComponentCount() const { return FComponents.size(); }
  // Raises EListError "List index out of bounds (%d)".
  TComponent& Components(std::size_t index) const;
  // The owned component of that name without regard to case, null when there is none.
  TComponent* FindComponent(StringView name) const;

 private:
  String FName;
  TComponent* FOwner = nullptr;
  std::vector<std::unique_ptr<TComponent>> FComponents;
};

}  // namespace zentavo
