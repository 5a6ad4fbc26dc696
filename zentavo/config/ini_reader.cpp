#include "zentavo/config/ini_reader.h"

#include <utility>

namespace zentavo {

IniReader::IniReader(AddSectionFunction add_section) : add_section_(std::move(add_section)) {}

void IniReader::ReadText(StringView text) {
  while (!text.empty()) ReadLine(TakeLine(text));
}

void IniReader::ReadLine(StringView line) {
  line = TrimView(line);
  if (line.empty() || line.front() == u';') return;
  if (line.front() == u'[' && line.back() == u']') {
    section_ = &add_section_(TrimView(line.substr(1, line.size() - 2)));
  } else if (section_ != nullptr) {
    AddLine(line);
  }
}

void IniReader::AddLine(StringView line) {
  const std::size_t separator = line.find(u'=');
  if (separator != line.npos) {
    const StringView name = TrimRightView(line.substr(0, separator));
    const StringView value = TrimLeftView(line.substr(separator + 1));
    if (name.size() + 1 + value.size() != line.size()) {
      joined_.assign(name).append(1, u'=').append(value);
      line = joined_;
    }
  }
  section_->Add(line);
}

}  // namespace zentavo
