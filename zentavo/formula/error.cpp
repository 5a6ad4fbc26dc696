#include "zentavo/formula/error.h"

#include <utility>

namespace zentavo {

EXParserError::EXParserError(String message, std::int32_t position, String name)
    : Exception(std::move(message)), position_(position), name_(std::move(name)) {}

EXParserError::~EXParserError() = default;

}  // namespace zentavo
