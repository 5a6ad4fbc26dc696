#include "zentavo/framework/text.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "zentavo/platform/case_mapping.h"

namespace zentavo {

namespace text_internal {

const char16_t* UpperTable() {
  static const auto table = [] {
    std::array<char16_t, 0x10000> units{};
    std::iota(units.begin(), units.end(), char16_t{0});
    platform::UpperCaseUnits(units);
    return units;
  }();
  return table.data();
}

}  // namespace text_internal

String AnsiUpperCase(StringView text) {
  String result(text);
  for (char16_t& unit : result) unit = UpperUnit(unit);
  return result;
}

String AnsiLowerCase(StringView text) {
  String result(text);
  platform::LowerCaseUnits(result);
  return result;
}

int CompareStr(StringView a, StringView b) {
  return a.compare(b);
}

int CompareText(StringView a, StringView b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t index = 0; index < common; ++index) {
    if (a[index] == b[index]) continue;
    const char16_t upper_a = UpperUnit(a[index]);
    const char16_t upper_b = UpperUnit(b[index]);
    if (upper_a != upper_b) return upper_a < upper_b ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

bool SameText(StringView a, StringView b) {
  return a.size() == b.size() && CompareText(a, b) == 0;
}

int StrLIComp(StringView a, StringView b, std::size_t count) {
  return CompareText(a.substr(0, count), b.substr(0, count));
}

StringView TrimLeftView(StringView text) {
  std::size_t start = 0;
  while (start < text.size() && text[start] <= u' ') ++start;
  return text.substr(start);
}

StringView TrimRightView(StringView text) {
  std::size_t size = text.size();
  while (size > 0 && text[size - 1] <= u' ') --size;
  return text.substr(0, size);
}

StringView TrimView(StringView text) {
  return TrimLeftView(TrimRightView(text));
}

namespace {

// How many units stand before the first line break, taken in blocks that compilers turn into a few
// instructions.
std::size_t LineLength(StringView text) {
  constexpr std::size_t kBlock = 8;
  const auto is_break = [](char16_t unit) { return unit == u'\n' || unit == u'\r'; };
  std::size_t end = 0;
  for (; end + kBlock <= text.size(); end += kBlock) {
    unsigned breaks = 0;
    for (std::size_t i = 0; i < kBlock; ++i) breaks |= is_break(text[end + i]) ? 1U : 0U;
    if (breaks != 0) break;
  }
  while (end < text.size() && !is_break(text[end])) ++end;
  return end;
}

}  // namespace

StringView TakeLine(StringView& rest) {
  const std::size_t end = LineLength(rest);
  const StringView line = rest.substr(0, end);
  rest.remove_prefix(end);
  if (rest.starts_with(u"\r\n")) {
    rest.remove_prefix(2);
  } else if (!rest.empty()) {
    rest.remove_prefix(1);
  }
  return line;
}

std::int32_t Pos(StringView part, StringView text) {
  if (part.empty()) return 0;
  const std::size_t found = text.find(part);
  return found == StringView::npos ? 0 : static_cast<std::int32_t>(found + 1);
}

String Copy(StringView text, std::int32_t index, std::int32_t count) {
  const auto start = static_cast<std::size_t>(std::max(index, 1) - 1);
  if (start >= text.size() || count <= 0) return {};
  return String(text.substr(start, static_cast<std::size_t>(count)));
}

String ReplaceAll(StringView text, StringView old_part, StringView new_part) {
  String result;
  std::size_t start = 0;
  if (!old_part.empty()) {
    for (std::size_t found = text.find(old_part); found != StringView::npos;
         found = text.find(old_part, start)) {
      result.append(text, start, found - start).append(new_part);
      start = found + old_part.size();
    }
  }
  return result.append(text, start);
}

String QuotedStr(StringView text, char16_t quote) {
  String result(1, quote);
  for (const char16_t unit : text) {
    if (unit == quote) result += quote;
    result += unit;
  }
  return result += quote;
}

String Excerpt(StringView text, std::size_t limit) {
  if (text.size() <= limit) return String(text);
  return String(text.substr(0, limit)) += u"...";
}

}  // namespace zentavo
