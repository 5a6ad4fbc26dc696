// Any text as an expression: tokenized, compiled and run over a host whose functions pop what they
// like.
#include <cstddef>
#include <cstdint>

#include "zentavo/expr/evaluator.h"
#include "zentavo/expr/expression.h"
#include "zentavo/expr/tokenizer.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/text.h"

namespace {

using zentavo::Variant;

// One letter is a name: a to h functions of that many parameters from 0 on, i to k uncounted
// functions, l to p stack variables, the others variables.
class Names : public zentavo::TTokenizer {
 public:
  std::int32_t GetFunctionId(zentavo::StringView name, std::int32_t& count) override {
    if (name.size() != 1 || name.front() > u'k') return 0;
    count = name.front() < u'i' ? name.front() - u'a' : -1;
    return name.front();
  }
  bool IsStackVariable(zentavo::StringView name) override {
    return name.size() == 1 && name.front() >= u'l' && name.front() <= u'p';
  }
  std::int32_t GetStackVariableId(zentavo::StringView name) override {
    return (name.front() - u'n') * 101;
  }
  std::int32_t GetVariableId(zentavo::StringView name) override {
    return name.size() > 3 ? 0 : name.back();
  }
  Variant GetParamValue(zentavo::StringView name) override { return name; }
};

class Host : public zentavo::TExpressionEvaluator {
 public:
  void CallFunction(std::int32_t id, Variant& result) override {
    for (std::int32_t count = id - u'a'; count > 0; --count) RunPop(result);
  }
  void GetVariableValue(std::int32_t id, Variant& value) override {
    switch (id % 6) {
      case 0: value = true; break;
      case 1: value = id; break;
      case 2: value = u"a text that is longer than short"; break;
      case 3: value = std::int64_t{id} << 56; break;
      case 4: value = Variant::Date(id); break;
      default: break;
    }
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zentavo::String text = zentavo::FromUtf8({reinterpret_cast<const char*>(data), size});
  Names names;
  zentavo::TExpression expression;
  zentavo::TCodeList code;
  Host host;
  host.SetPostFix(&code);
  try {
    expression.CompileExpression(text, code, names);
  } catch (const zentavo::Exception&) {
    // What was compiled before the fault runs all the same.
  }
  host.Evaluate();
  return 0;
}
