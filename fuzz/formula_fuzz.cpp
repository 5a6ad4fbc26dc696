// Evaluates any text as a formula, plain, and pre-compiled behind a '$'. A formula that has a value
// has the same one when it is run again, and again from what Formula() gives.
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "zentavo/formula/parser.h"
#include "zentavo/framework/exception.h"

namespace {

using zentavo::String;
using zentavo::StringView;

class Host : public zentavo::TXParser {
 public:
  void UserInitialize() override {
    InsertIdent(u"Price", zentavo::tokPtrVariable, 0, zentavo::resNumber, &price_);
    InsertIdent(u"Qty", zentavo::tokPtrVariable, 0, zentavo::resInteger, &quantity_);
    InsertIdent(u"Name", zentavo::tokPtrVariable, 0, zentavo::resString, &name_);
    DefineUserVariable(u"Rate", 1, zentavo::resNumber);
    DefineUserFunction(u"Twice", 1, zentavo::resNumber);
  }
  void EvaluateUserVariable(std::int32_t, zentavo::TResult& result) override {
    result.ResultNum = 24;
  }
  void EvaluateUserFunction(std::int32_t, zentavo::TArguments& args,
                            zentavo::TResult& result) override {
    if (args.Count() > 0) result.ResultNum = 2 * args.Items(0).ResultNum;
  }
  bool CanEvaluate(StringView name, zentavo::PResult result, std::int32_t* cookie) override {
    if (result == nullptr) {
      if (!name.starts_with(u"z")) return false;
      *cookie = static_cast<std::int32_t>(name.size());
    } else {
      result->ResultType = zentavo::resNumber;
      result->ResultNum = *cookie;
    }
    return true;
  }

 private:
  double price_ = 20.5;
  std::int32_t quantity_ = 12;
  String name_ = u"Olive";
};

// What a run gave: a value, or an error's text.
struct Outcome {
  bool failed = false;
  zentavo::TResultTypes type = zentavo::resUndefined;
  std::uint64_t number = 0;
  String text;
  String debug;
  bool operator==(const Outcome&) const = default;
};

Outcome Run(Host& host) {
  Outcome outcome;
  try {
    host.CResult = {};
    host.Execute();
    outcome.type = host.CResult.ResultType;
    outcome.number = std::bit_cast<std::uint64_t>(host.CResult.ResultNum);
    outcome.text = host.CResult.ResultStr;
    outcome.debug = host.CResult.DebugStr;
  } catch (const zentavo::Exception& error) {
    outcome.failed = true;
    outcome.text = error.Message();
  }
  return outcome;
}

void Require(bool condition) {
  if (!condition) std::abort();
}

bool Contains(StringView text, StringView word) {
  String upper = zentavo::AnsiUpperCase(text);
  return upper.find(word) != upper.npos;
}

void Check(const String& formula) {
  if (Contains(formula, u"CURTIME")) return;  // differs from run to run
  Host host;
  host.SetFormula(formula);
  const Outcome first = Run(host);
  for (int i = 0; i < 3; ++i) Require(Run(host) == first);
  if (first.failed) return;
  Host other;
  other.SetFormula(String(host.Formula()));
  for (int i = 0; i < 3; ++i) Require(Run(other) == first);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The first byte chooses how the others are read.
  if (size == 0) return 0;
  const bool compiled = (data[0] & 1) != 0;
  const bool utf8 = (data[0] & 2) != 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  String text;
  if (utf8) {
    text = zentavo::FromUtf8(bytes);
  } else {
    text.resize(bytes.size() / 2);
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
  }
  Check(compiled ? u"$" + text : text);
  return 0;
}
