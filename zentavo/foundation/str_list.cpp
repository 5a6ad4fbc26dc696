#include "zentavo/foundation/str_list.h"

#include <memory>
#include <utility>

namespace zentavo {

TStrList& TStrList::Create(TComponent& AOwner) {
  auto created = std::make_unique<TStrList>();
  TStrList& list = *created;
  AOwner.InsertComponent(std::move(created));
  return list;
}

TStrList::~TStrList() = default;

void TStrList::SetItems(const TStringList& Value) {
  if (FItems.Text() != Value.Text()) FItems.Assign(Value);
}

}  // namespace zentavo
