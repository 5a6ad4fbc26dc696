// Values of formulas as the tool reads and prints them.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "zentavo/formula/parser.h"

namespace zentavo::tool {

// "number", "string", ...
String TypeName(TResultTypes type);

// Appends the value in UTF-8: a number with '.', a string as it is, a date as yyyy-mm-dd, a time as
// hh:nn:ss, nothing for an undefined value.
void AppendValue(AnsiString& out, const TResult& value);
AnsiString ValueText(const TResult& value);

// The variables of a command line. Neither copied nor moved, because parsers read them in place.
class NamedValues {
 public:
  // From NAME=NUMBER and NAME=TEXT. Raises UsageError when one is not, and when a formula cannot
  // reach the name.
  NamedValues(const std::vector<std::string>& numbers, const std::vector<std::string>& texts);
  NamedValues(const NamedValues&) = delete;
  NamedValues& operator=(const NamedValues&) = delete;

  // The values must outlive the parser.
  void InsertInto(TXParser& parser);
  bool Has(StringView name) const;

 private:
  template <typename T>
  struct Variable {
    String name;
    T value;
  };
  std::deque<Variable<double>> numbers_;
  std::deque<Variable<String>> texts_;
};

// Whether a name in a formula may begin with `unit`; digits and points may follow.
constexpr bool IsNameLetter(char16_t unit) {
  return (unit >= u'A' && unit <= u'z') || unit == u'@' || unit >= 0x80;
}
// Whether formulas can read a variable of this name: an identifier that no built-in has.
bool IsFreeIdentifier(StringView name);

}  // namespace zentavo::tool
