#include "examples/demo/text_table.h"

#include <algorithm>
#include <utility>

namespace demo {

namespace {

using zentavo::String;

constexpr zentavo::StringView kGap = u"  ";

bool TakesNoColumn(char16_t unit) {
  const bool accent = unit >= 0x300 && unit <= 0x36F;
  const bool second_half = unit >= 0xDC00 && unit <= 0xDFFF;
  return accent || second_half;
}

}  // namespace

std::size_t DisplayWidth(zentavo::StringView text) {
  return text.size() -
         static_cast<std::size_t>(std::count_if(text.begin(), text.end(), TakesNoColumn));
}

void TextTable::AddColumn(zentavo::StringView title, Align align) {
  columns_.push_back({String(title), align});
}

std::vector<std::size_t> TextTable::Widths() const {
  std::vector<std::size_t> widths;
  for (const Column& column : columns_) widths.push_back(DisplayWidth(column.title));
  for (const auto& row : rows_) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(row[i]));
    }
  }
  return widths;
}

String TextTable::Line(const std::vector<String>& cells,
                       const std::vector<std::size_t>& widths) const {
  String line;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const String cell = i < cells.size() ? cells[i] : String();
    const String blanks(widths[i] - DisplayWidth(cell), u' ');
    line += columns_[i].align == Align::kLeft ? cell + blanks : blanks + cell;
    line += kGap;
  }
  return zentavo::TrimRight(line);
}

std::string TextTable::Text() const {
  const std::vector<std::size_t> widths = Widths();
  std::vector<String> titles;
  String rule;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    titles.push_back(columns_[i].title);
    for (std::size_t j = 0; j < widths[i]; ++j) rule += u'─';
    rule += kGap;
  }
  rule = zentavo::TrimRight(rule);
  String text = Line(titles, widths) + u"\n" + rule + u"\n";
  for (const auto& row : rows_) text += (row.empty() ? rule : Line(row, widths)) + u"\n";
  return zentavo::ToUtf8(text);
}

}  // namespace demo
