// The tokens of expressions.
#pragma once

#include <cstdint>
#include <vector>

#include "zentavo/expr/instruction.h"
#include "zentavo/framework/text.h"
#include "zentavo/framework/variant.h"

namespace zentavo {

enum TTokenKind : std::uint8_t {
  tkNone,      // a character that starts no token
  tkOperator,  // an operator, a keyword operator or a function name
  tkOperand,   // a literal, a parameter, a variable or a stack variable
  tkOpen,
  tkClose,
  tkComma,
  tkCustomOperator,  // an operator of the host, compiled as tkOperator is
};

// A plain value: the tokenizer fills it, the compiler copies it.
class ZENTAVO_API TSourceToken {
 public:
  // The token's text: of a string literal without quotes, of a parameter without the colon.
  const String& Name() const { return FName; }
  TTokenKind TokenKind() const { return FTokenKind; }
  TOperator Operator() const { return FOperator; }
  const Variant& Value() const { return FValue; }
  // How tightly the operator binds.
  std::int32_t Level() const { return FLevel; }

  TSourceToken Copy() const { return *this; }
  // The instruction with this token's operator, value and index.
  TInstruction CreateInstrunction() const { return TInstruction(FOperator, FValue, FIndex); }

  String FName;
  TTokenKind FTokenKind = tkNone;
  TOperator FOperator = opNone;
  std::int32_t FIndex = 0;  // the host's identifier of a variable, stack variable or function
  Variant FValue;           // the literal's value
  std::int32_t FLevel = 0;
};

using TTokenList = std::vector<TSourceToken>;

}  // namespace zentavo
