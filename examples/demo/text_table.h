// A table of texts for a person to read, aligned by the width that the texts have on a screen.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zentavo/framework/text.h"

namespace demo {

// Columns on a screen that `text` takes: accents that stand above a letter take none.
std::size_t DisplayWidth(zentavo::StringView text);

class TextTable {
 public:
  enum class Align { kLeft, kRight };

  void AddColumn(zentavo::StringView title, Align align);
  void AddRow(std::vector<zentavo::String> cells) { rows_.push_back(std::move(cells)); }
  void AddRule() { rows_.emplace_back(); }
  // The whole table in UTF-8.
  std::string Text() const;

 private:
  struct Column {
    zentavo::String title;
    Align align;
  };

  std::vector<std::size_t> Widths() const;
  zentavo::String Line(const std::vector<zentavo::String>& cells,
                       const std::vector<std::size_t>& widths) const;

  std::vector<Column> columns_;
  std::vector<std::vector<zentavo::String>> rows_;  // an empty one is a rule
};

}  // namespace demo
