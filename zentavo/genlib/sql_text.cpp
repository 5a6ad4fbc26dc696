#include "zentavo/genlib/sql_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <unordered_set>
#include <utility>

#include "zentavo/genlib/quoted_pieces.h"

namespace zentavo {

namespace {

constexpr std::size_t kSelectLength = 7;  // "SELECT" and a blank
constexpr std::size_t kLongestInt = 11;   // "-2147483648"

// One list at a time, at most kMembersPerList values, with a comma between them.
void AppendMembers(String& out, std::span<const std::int32_t> values) {
  std::array<char, kMembersPerList*(kLongestInt + 1)> text;
  char* at = text.data();
  for (const std::int32_t value : values) {
    at = std::to_chars(at, at + kLongestInt, value).ptr;
    *at++ = ',';
  }
  const auto length = static_cast<std::size_t>(at - text.data()) - 1;
  const std::size_t start = out.size();
  out.resize(start + length);
  std::copy_n(text.data(), length, out.data() + start);
}

void OpenNextList(String& out, StringView field_name) {
  out.append(u") OR ").append(field_name).append(u" IN (");
}

}  // namespace

String MakeInQuery(StringView FieldName, std::span<const std::int32_t> Values) {
  String out(u"(");
  out.append(FieldName).append(u" IN (");
  constexpr std::size_t kAroundName = 11;  // ") OR " and " IN ("
  const std::size_t further_lists = Values.size() / kMembersPerList;
  for (bool first = true; Values.size() > kMembersPerList; first = false) {
    AppendMembers(out, Values.first(kMembersPerList));
    // The lists to come are about as long as the first; a little more, so that none moves the text.
    if (first) out.reserve((out.size() + out.size() / 16 + kAroundName) * (further_lists + 1));
    OpenNextList(out, FieldName);
    Values = Values.subspan(kMembersPerList);
  }
  if (!Values.empty()) {
    AppendMembers(out, Values);
    out += u')';
  }
  out += u')';
  return out;
}

String MakeInQuery(StringView FieldName, StringView ValuesText) {
  String out(u"(");
  out.append(FieldName).append(u" IN (");
  std::size_t commas = 0;
  for (const char16_t unit : ValuesText) {
    if (unit == u',' && ++commas == kMembersPerList) {
      OpenNextList(out, FieldName);
      commas = 0;
    } else {
      out += unit;
    }
  }
  out.append(u"))");
  return out;
}

String FormatSQLInValues(StringView FieldName, StringView ValuesText) {
  TStringList items;
  items.SetStrictDelimiter(true);
  items.SetDelimiter(u',');
  items.SetDelimitedText(ClearSameStrings(ValuesText, u','));
  String out = u"(";
  for (std::int32_t i = 0; i < items.Count(); ++i) {
    const bool first_of_list = static_cast<std::size_t>(i) % kMembersPerList == 0;
    if (first_of_list) out.append(i == 0 ? u"(" : u")) OR (").append(FieldName).append(u" IN (");
    if (!first_of_list) out.append(u", ");
    out.append(items[i]);
  }
  if (items.Count() > 0) out.append(u"))");
  out += u')';
  return out;
}

String AddFldsInSelect(StringView FieldList, StringView Alias, StringView SQL) {
  const auto has = [&](char16_t before, StringView field, char16_t behind) {
    return SQL.find(before + String(field) + behind) != StringView::npos;
  };
  String added;
  const auto fields = QuotedPieces(FieldList, u';', u'[', u']');
  for (std::size_t i = fields.size(); i-- > 0;) {
    const StringView field = fields[i];
    if (has(u',', field, u',') || has(u'.', field, u',') || has(u'.', field, u' ')) continue;
    added.append(Alias).append(u".").append(field).append(u",");
  }
  String out(SQL);
  out.insert(std::min(kSelectLength, out.size()), added);
  return out;
}

bool CheckParts(String& Name, StringView FullName, char16_t Separator) {
  auto missing = std::count(FullName.begin(), FullName.end(), Separator) -
                 std::count(Name.begin(), Name.end(), Separator);
  if (missing <= 0) return false;
  std::size_t end = 0;
  for (; missing > 0; --missing) end = FullName.find(Separator, end) + 1;
  Name.insert(0, FullName.substr(0, end));
  return true;
}

namespace {

// The pieces met so far, one behind the other with a separator around each. Whether a piece is
// among them is asked of that whole text: a piece in brackets may hold separators, and pieces
// inside it count as met.
class MetPieces {
 public:
  MetPieces(std::size_t room, char16_t separator) : separator_(separator) {
    text_.reserve(room + 2);
    text_ += separator;
  }

  void Add(StringView piece) {
    if (Has(piece)) return;
    text_.append(piece) += separator_;
    std::size_t end = 0;
    for (std::size_t start = 0; end != StringView::npos; start = end + 1) {
      end = piece.find(separator_, start);
      parts_.insert(piece.substr(start, end - start));
    }
  }

  // Without the separators at the ends.
  String Text() && {
    text_.erase(0, 1);
    if (!text_.empty()) text_.pop_back();
    return std::move(text_);
  }

 private:
  bool Has(StringView piece) const {
    if (piece.find(separator_) == StringView::npos) return parts_.contains(piece);
    return text_.find(separator_ + String(piece) + separator_) != String::npos;
  }

  char16_t separator_;
  String text_;
  std::unordered_set<StringView> parts_;  // between any two separators of text_
};

}  // namespace

String ClearSameStrings(StringView Text, char16_t Separator) {
  MetPieces met(Text.size(), Separator);
  for (const StringView piece : QuotedPieces(Text, Separator, u'[', u']')) met.Add(piece);
  return std::move(met).Text();
}

}  // namespace zentavo
