// Reads the lines of an ini file one by one into a list of sections.
#pragma once

#include <functional>

#include "zentavo/framework/string_list.h"
#include "zentavo/framework/text.h"

namespace zentavo {

class IniReader {
 public:
  // Appends a section and returns its lines.
  using AddSectionFunction = std::function<TStringList&(StringView name)>;

  explicit IniReader(AddSectionFunction add_section);

  void ReadLine(StringView line);
  void ReadText(StringView text);

 private:
  void AddLine(StringView line);

  AddSectionFunction add_section_;
  TStringList* section_ = nullptr;  // the current one; none before the first header
  String joined_;                   // kept for its memory
};

}  // namespace zentavo
