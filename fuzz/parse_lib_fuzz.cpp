// Any text as a script, scanned from a place of the input's choice by every scanner. Positions stay
// in the text, and where a scanner raises, where they were.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "zentavo/expr/parse_lib.h"
#include "zentavo/framework/exception.h"
#include "zentavo/framework/text.h"

namespace {

using zentavo::String;

// Runs one scanner from `position` and returns where it stopped.
template <typename Scan>
std::int32_t Check(const String& text, std::int32_t position, const Scan& scan) {
  std::int32_t at = position;
  try {
    scan(at);
    const auto end = static_cast<std::int32_t>(text.size()) + 1;
    if (at < 1 || (at > end && at != position)) std::abort();
  } catch (const zentavo::Exception&) {
    if (at != position) std::abort();
  }
  return at;
}

void CutIntoTokens(const String& text) {
  zentavo::TStringTokenType type = zentavo::ttNone;
  for (std::int32_t position = 1; type != zentavo::ttEndOfTokens;) {
    const std::int32_t before = position;
    zentavo::GetStringToken(text, position, type);
    if (position <= before && type != zentavo::ttEndOfTokens) std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::int32_t start = data[0] - 2;
  const String text = zentavo::FromUtf8({reinterpret_cast<const char*>(data + 1), size - 1});
  zentavo::TStringList list;
  Check(text, start, [&](std::int32_t& at) { zentavo::GetBlock(text, at, u'(', u')'); });
  Check(text, start, [&](std::int32_t& at) { zentavo::GetBlock(text, at, u'\'', u'\''); });
  Check(text, start, [&](std::int32_t& at) { zentavo::GetName(text, at); });
  Check(text, start, [&](std::int32_t& at) { zentavo::GetParameter(text, at); });
  Check(text, start, [&](std::int32_t& at) { zentavo::GetInstruction(text, at); });
  Check(text, start, [&](std::int32_t& at) { zentavo::ExtractCommaName(text, at); });
  Check(text, start, [&](std::int32_t& at) {
    zentavo::GetFunctionParameters(text, at, list);
    if (zentavo::CountFunctionParameters(text, start) != list.Count()) std::abort();
  });
  Check(text, 1, [&](std::int32_t&) {
    const zentavo::Variant value = zentavo::StrToVariant(text);
    for (std::uint8_t option = 0; option < 4; ++option) {
      zentavo::ValueInString(value, text, option);
    }
  });
  CutIntoTokens(text);
  return 0;
}
