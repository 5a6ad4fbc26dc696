#include "zentavo/foundation/helper_text.h"

#include <algorithm>

#include "zentavo/foundation/str_builder.h"
#include "zentavo/framework/file_names.h"

namespace zentavo {

bool StartsWith(StringView S, StringView Prefix) {
  return StrLIComp(S, Prefix, Prefix.size()) == 0;
}

bool StartsWith(StringView S, std::initializer_list<StringView> Prefixes) {
  return std::any_of(Prefixes.begin(), Prefixes.end(),
                     [S](StringView prefix) { return StartsWith(S, prefix); });
}

bool StartsWith(StringView S, char16_t Ch) {
  return !S.empty() && S.front() == Ch;
}

bool EndsWith(StringView S, StringView Suffix) {
  return Suffix.size() <= S.size() && SameText(S.substr(S.size() - Suffix.size()), Suffix);
}

bool SearchInDelimStr(StringView Item, StringView List) {
  if (Item.empty() || List.size() < Item.size() || List.size() < 2) return false;
  for (std::size_t start = 0; start < List.size();) {
    if (StartsWith(List.substr(start), Item)) return true;
    const std::size_t end = List.find(u';', start);
    if (end == StringView::npos) return false;
    start = end + 1;
  }
  return false;
}

String FirstPart(StringView S, char16_t Delim) {
  return String(S.substr(0, S.find(Delim)));
}

String LastPart(StringView S, char16_t Delim) {
  const std::size_t found = S.rfind(Delim);
  return found == StringView::npos ? String() : String(S.substr(found + 1));
}

std::vector<String> SplitStr(StringView S, char16_t Delim) {
  std::vector<String> parts;
  std::size_t start = 0;
  for (std::size_t end = S.find(Delim); end != StringView::npos; end = S.find(Delim, start)) {
    parts.emplace_back(S.substr(start, end - start));
    start = end + 1;
  }
  parts.emplace_back(S.substr(start));
  return parts;
}

std::int32_t PosNoCase(StringView SubStr, StringView S, std::int32_t Offset) {
  if (S.empty() || Offset < 1) return 0;
  if (SubStr.empty()) return Offset;
  const auto from = std::min(S.size(), static_cast<std::size_t>(Offset) - 1);
  const auto same_low_byte = [](char16_t a, char16_t b) { return (a & 0xFF) == (b & 0xFF); };
  const auto found = std::search(S.begin() + static_cast<std::ptrdiff_t>(from), S.end(),
                                 SubStr.begin(), SubStr.end(), same_low_byte);
  return found == S.end() ? 0 : static_cast<std::int32_t>(found - S.begin()) + 1;
}

String RemoveCR(StringView S) {
  String result;
  result.reserve(S.size());
  bool in_run = false;
  for (const char16_t unit : S) {
    const bool is_space = unit >= 1 && unit <= 32;
    if (!is_space) {
      result += unit;
    } else if (!in_run) {
      result += u' ';
    }
    in_run = is_space;
  }
  return result;
}

String fullFileNameWithoutExtension(StringView FileName) {
  return ExtractFilePath(FileName) + FirstPart(ExtractFileName(FileName), u'.');
}

namespace {

constexpr std::int32_t kBuilderStep = 4096;

template <typename Integer>
String JoinIntegers(std::span<const Integer> values) {
  TStrBuilder builder(u"", kBuilderStep);
  for (const Integer value : values) {
    if (builder.Size() > 0) builder.Add(u',');
    builder.AddInteger(value);
  }
  return builder.GetData();
}

}  // namespace

String ArrayToCommaStr(std::span<const std::int16_t> Values) {
  return JoinIntegers(Values);
}
String ArrayToCommaStr(std::span<const std::int32_t> Values) {
  return JoinIntegers(Values);
}

String NetFormat(StringView Fmt, std::span<const StringView> Args) {
  const StringView text = Fmt.substr(0, Fmt.find(u'\0'));
  String result;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != u'{') {
      result += text[at];
      continue;
    }
    std::uint32_t index = 0;
    do {
      ++at;
      if (at < text.size()) index = index * 10 + text[at] - u'0';
    } while (at < text.size() && text[at] != u'}');
    if (at < text.size() && index < Args.size()) result += Args[index];
  }
  return result;
}

String NetFormat(StringView Fmt, std::initializer_list<StringView> Args) {
  return NetFormat(Fmt, std::span(Args.begin(), Args.size()));
}

std::int32_t SafeDiv(std::int32_t A, std::int32_t B) {
  if (B == 0) return 0;
  return static_cast<std::int32_t>(std::int64_t{A} / B);
}

double SafeDiv(double A, double B) {
  return B == 0 ? 0 : A / B;
}

}  // namespace zentavo
