#include "zentavo/expr/script_messages.h"

#include <array>
#include <cstddef>

#include "zentavo/framework/format.h"

namespace zentavo {

namespace {

constexpr std::array<StringView, 8> kTexts = {
    u"Operation aborted",          u"Expected '%s'",
    u"Section '%s' not found !",   u"Unterminated string",
    u"Unexpected symbol '%s'",     u"Expected symbol '%s'",
    u"Undeclared identifier '%s'", u"Missing operator or semicolon"};

}  // namespace

EScriptException::~EScriptException() = default;

StringView ScriptMessage(std::int32_t Id) {
  const bool known = Id >= smAborted && Id <= smMissingOperator;
  return known ? kTexts[static_cast<std::size_t>(Id - smAborted)] : StringView();
}

String ScriptMessage(std::int32_t Id, StringView Argument) {
  return Format(ScriptMessage(Id), {Argument});
}

}  // namespace zentavo
