#include "zentavo/formula/arguments.h"

#include <utility>

#include "zentavo/formula/result_values.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"

namespace zentavo {

TResult& TArguments::Items(std::int32_t index) const {
  if (index < 0 || index >= count_) {
    throw EListError(Format(u"List index out of bounds (%d)", {index}));
  }
  return *items_[static_cast<std::size_t>(index)];
}

TResult& TArguments::Add(std::unique_ptr<TResult> item) {
  const auto place = items_.begin() + count_;
  ++count_;
  return **items_.insert(place, std::move(item));
}

TResult& TArguments::AddNew() {
  const auto index = static_cast<std::size_t>(count_);
  if (index == items_.size()) items_.push_back(std::make_unique<TResult>());
  ++count_;
  MakeFresh(*items_[index]);
  return *items_[index];
}

}  // namespace zentavo
