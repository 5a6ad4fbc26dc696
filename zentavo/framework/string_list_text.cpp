// The list as one text: lines, delimited items, names and values.
#include <algorithm>
#include <utility>

#include "zentavo/framework/string_list.h"
#include "zentavo/platform/line_break.h"

namespace zentavo {

namespace {

constexpr bool IsBlank(char16_t unit) {
  return unit <= u' ';
}

// Takes delimited items from the front of a text, one by one.
class ItemReader {
 public:
  ItemReader(StringView text, char16_t delimiter, char16_t quote, bool strict)
      : rest_(text), delimiter_(delimiter), quote_(quote), strict_(strict) {
    SkipBlanks();
    more_ = !rest_.empty();
  }

  bool HasMore() const { return more_; }

  String Next() {
    String item = !rest_.empty() && quote_ != 0 && rest_.front() == quote_ ? Quoted() : Plain();
    SkipBlanks();
    more_ = !rest_.empty();
    if (more_ && rest_.front() == delimiter_) {  // something follows it, were it the empty item
      rest_.remove_prefix(1);
      SkipBlanks();
    }
    return item;
  }

 private:
  void SkipBlanks() {
    if (strict_) return;
    while (!rest_.empty() && IsBlank(rest_.front())) rest_.remove_prefix(1);
  }

  String Plain() {
    const auto end = std::find_if(rest_.begin(), rest_.end(), [this](char16_t unit) {
      return unit == delimiter_ || (!strict_ && IsBlank(unit));
    });
    const auto length = static_cast<std::size_t>(end - rest_.begin());
    String item(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return item;
  }

  String Quoted() {
    String item;
    rest_.remove_prefix(1);
    while (!rest_.empty()) {
      const std::size_t length = std::min(rest_.find(quote_), rest_.size());
      item += rest_.substr(0, length);
      rest_.remove_prefix(std::min(length + 1, rest_.size()));
      const bool doubled = !rest_.empty() && rest_.front() == quote_;
      if (!doubled) break;
      item += quote_;
      rest_.remove_prefix(1);
    }
    if (strict_) item += Plain();
    return item;
  }

  StringView rest_;
  char16_t delimiter_;
  char16_t quote_;
  bool strict_;
  bool more_ = false;
};

}  // namespace

StringView PlatformLineBreak() {
  return platform::LineBreak();
}

String TStringList::Text() const {
  std::size_t size = 0;
  for (const Item& item : items_) size += item.text.size() + line_break_.size();
  String text;
  text.reserve(size);
  for (const Item& item : items_) text.append(item.text).append(line_break_);
  return text;
}

void TStringList::SetText(StringView text) {
  std::vector<Item> items;
  while (!text.empty()) items.push_back({String(TakeLine(text))});
  ReplaceItems(Admitted(std::move(items), {}));
}

String TStringList::Delimited(const Delimiters& rules) const {
  const auto special = [&](char16_t unit) {
    return unit == rules.delimiter || unit == rules.quote || (!rules.strict && IsBlank(unit));
  };
  const bool empty_is_lost = items_.size() == 1 || (!rules.strict && IsBlank(rules.delimiter));
  String text;
  for (const Item& item : items_) {
    if (&item != items_.data()) text += rules.delimiter;
    const bool quoted = item.text.empty()
                            ? empty_is_lost
                            : std::any_of(item.text.begin(), item.text.end(), special);
    text += quoted && rules.quote != 0 ? QuotedStr(item.text, rules.quote) : item.text;
  }
  return text;
}

void TStringList::SetDelimited(StringView text, const Delimiters& rules) {
  std::vector<Item> items;
  ItemReader reader(text, rules.delimiter, rules.quote, rules.strict);
  while (reader.HasMore()) items.push_back({reader.Next()});
  ReplaceItems(Admitted(std::move(items), {}));
}

String TStringList::DelimitedText() const {
  return Delimited({delimiter_, quote_char_, strict_delimiter_});
}

void TStringList::SetDelimitedText(StringView text) {
  SetDelimited(text, {delimiter_, quote_char_, strict_delimiter_});
}

String TStringList::CommaText() const {
  return Delimited({u',', u'"', false});
}

void TStringList::SetCommaText(StringView text) {
  SetDelimited(text, {u',', u'"', false});
}

std::int32_t TStringList::IndexOfName(StringView name) const {
  for (std::int32_t i = 0; i < Count(); ++i) {
    const StringView entry = items_[static_cast<std::size_t>(i)].text;
    if (entry.find(name_value_separator_) == name.size() &&
        CompareStrings(entry.substr(0, name.size()), name) == 0) {
      return i;
    }
  }
  return -1;
}

String TStringList::Names(std::int32_t index) const {
  const String& entry = Strings(index);
  const std::size_t separator = entry.find(name_value_separator_);
  return separator == String::npos ? String() : entry.substr(0, separator);
}

String TStringList::ValueFromIndex(std::int32_t index) const {
  const String& entry = Strings(index);
  const std::size_t separator = entry.find(name_value_separator_);
  return separator == String::npos ? String() : entry.substr(separator + 1);
}

String TStringList::Values(StringView name) const {
  const std::int32_t index = IndexOfName(name);
  return index < 0 ? String() : ValueFromIndex(index);
}

void TStringList::SetValueOf(StringView name, StringView value) {
  const std::int32_t index = IndexOfName(name);
  if (value.empty()) {
    if (index >= 0) Delete(index);
    return;
  }
  const String entry = String(name).append(1, name_value_separator_).append(value);
  if (index < 0) {
    Add(entry);
  } else {
    SetString(index, entry);
  }
}

void TStringList::SetValueFromIndex(std::int32_t index, StringView value) {
  if (value.empty()) {
    Delete(index);
  } else {
    SetString(index, Names(index).append(1, name_value_separator_).append(value));
  }
}

}  // namespace zentavo
