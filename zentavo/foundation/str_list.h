// A component that carries a string list.
#pragma once

#include "zentavo/framework/component.h"
#include "zentavo/framework/string_list.h"

namespace zentavo {

class ZENTAVO_API TStrList : public TComponent {
 public:
  using TComponent::TComponent;
  // Returns a new component that `AOwner` owns.
  static TStrList& Create(TComponent& AOwner);
  ~TStrList() override;

  TStringList& Items() { return FItems; }
  const TStringList& Items() const { return FItems; }
  // Takes `Value` when its text differs; an equal text changes nothing and notifies nobody.
  void SetItems(const TStringList& Value);

  std::int32_t GetCount() const { return FItems.Count(); }
  std::int32_t Count() const { return GetCount(); }
  const String& GetItem(std::int32_t Index) const { return FItems.Strings(Index); }
  const String& Item(std::int32_t Index) const { return GetItem(Index); }
  void SetItem(std::int32_t Index, StringView Text) { FItems.SetString(Index, Text); }

 private:
  TStringList FItems;
};

}  // namespace zentavo
