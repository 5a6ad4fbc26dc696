#include "zentavo/expr/instruction.h"

#include <array>
#include <cstddef>

namespace zentavo {

StringView OperatorName(TOperator Op) {
  static constexpr std::array<StringView, 24> kNames = {
      u"opNone",     u"opString",   u"opNumber",    u"opStackVariable",
      u"opVariable", u"opFunction", u"opEq",        u"opNe",
      u"opGt",       u"opGe",       u"opLt",        u"opLe",
      u"opAdd",      u"opSubtract", u"opMultiply",  u"opDivide",
      u"opMod",      u"opDiv",      u"opAnd",       u"opOr",
      u"opNot",      u"opNegative", u"opAssignVar", u"opStop"};
  return Op < kNames.size() ? kNames[Op] : StringView();
}

}  // namespace zentavo
