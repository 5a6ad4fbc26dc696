#include "zentavo/json/errors.h"

#include <utility>

namespace zentavo {

NullPointerException::~NullPointerException() = default;
NoSuchElementException::~NoSuchElementException() = default;
NumberFormatException::~NumberFormatException() = default;
ClassCastException::~ClassCastException() = default;
NotImplmentedFeature::~NotImplmentedFeature() = default;

ParseException::ParseException(String Reason, String Message, std::int32_t Position, Place Where)
    : Exception(std::move(Message)),
      FReason(std::move(Reason)),
      FPosition(Position),
      FPlace(Where) {}
ParseException::~ParseException() = default;

}  // namespace zentavo
