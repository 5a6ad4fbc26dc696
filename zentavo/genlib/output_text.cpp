#include "zentavo/genlib/output_text.h"

#include <algorithm>

#include "zentavo/foundation/errors.h"

namespace zentavo {

namespace {

constexpr StringView kBreaks = u" \r";
constexpr StringView kMaskLiterals = u"!#$&+-./@\\^";

// How much of `text` belongs to its first line of at most `max_length` units.
std::size_t LineLength(StringView text, std::size_t max_length) {
  const StringView window = text.substr(0, max_length);
  const std::size_t last_break = window.find_last_of(kBreaks);
  const bool breaks = last_break != StringView::npos && last_break > 0;
  const StringView line = window.substr(0, breaks ? last_break : window.size());
  // A carriage return among the blanks at the front ends no line: trimming takes it.
  const std::size_t front = line.size() - TrimLeftView(line).size();
  const std::size_t line_end = line.find(u'\r', front);
  if (line_end == StringView::npos || TrimView(line.substr(line_end)).empty()) return line.size();
  return line_end + 1;
}

}  // namespace

String ExtractProtasis(StringView Text, std::int32_t MaxLength, std::int32_t& Position) {
  if (MaxLength < 1) ZentavoErrorFmt(u"Line length must be at least 1, not %d", {MaxLength});
  std::size_t at = static_cast<std::size_t>(std::max(Position, 1)) - 1;
  if (at >= Text.size()) return {};
  Text.remove_prefix(at);
  std::size_t length = LineLength(Text, static_cast<std::size_t>(MaxLength));
  String line = Trim(Text.substr(0, length));
  if (length < Text.size() && kBreaks.find(Text[length]) != StringView::npos) ++length;
  Position = static_cast<std::int32_t>(at + length) + 1;
  return line;
}

String TrimLiteral(StringView Text, StringView Mask) {
  const auto is_trailing = [&](std::size_t at) {
    if (Text[at] == u' ') return true;
    return at < Mask.size() && Text[at] == Mask[at] &&
           kMaskLiterals.find(Text[at]) != StringView::npos;
  };
  std::size_t length = Text.size();
  while (length > 0 && is_trailing(length - 1)) --length;
  return String(Text.substr(0, length));
}

}  // namespace zentavo
