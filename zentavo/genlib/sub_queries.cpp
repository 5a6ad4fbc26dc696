#include "zentavo/genlib/sub_queries.h"

#include <algorithm>

namespace zentavo {

namespace {

constexpr char16_t kMarker = u'#';
constexpr StringView kFrom = u" FROM ";
constexpr std::size_t kDroppedUnits = 3;

// Cuts the text up to the next marker, and the marker, off `rest`.
StringView TakeSegment(StringView& rest) {
  const std::size_t end = std::min(rest.find(kMarker), rest.size());
  const StringView segment = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return segment;
}

// Where the first " FROM " outside parentheses stands; npos when there is none.
std::size_t FindFrom(StringView statement) {
  std::int64_t depth = 0;
  for (std::size_t at = 0; at < statement.size(); ++at) {
    if (statement[at] == u'(') ++depth;
    if (statement[at] == u')') --depth;
    if (depth == 0 && statement[at] == kFrom.front() &&
        SameText(statement.substr(at, kFrom.size()), kFrom)) {
      return at;
    }
  }
  return StringView::npos;
}

}  // namespace

String InjectSubQueries(StringView SQL, std::span<const String> Names,
                        std::span<const String> SubQueries) {
  String names;
  String queries;
  for (std::size_t i = 0; i < Names.size(); ++i) {
    if (i > 0) {
      names += u',';
      queries.append(u"\r\n");
    }
    names.append(Names[i]);
    if (i < SubQueries.size()) queries.append(SubQueries[i]);
  }
  return u"#," + names + kMarker + queries + kMarker + String(SQL);
}

bool CheckSubQueries(String& Statement, String& Packed) {
  if (Packed.empty() || Packed.front() != kMarker) return false;
  StringView rest = StringView(Packed).substr(1);
  const StringView names = TakeSegment(rest);
  const StringView queries = TakeSegment(rest);
  Statement.erase(0, kDroppedUnits);
  const std::size_t from = FindFrom(Statement);
  if (from != StringView::npos) Statement.insert(from, names);
  Statement.append(u" ").append(queries);
  Packed = String(rest);
  return true;
}

}  // namespace zentavo
