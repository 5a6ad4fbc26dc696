#include "tools/zentavo/arguments.h"

#include "tools/zentavo/command.h"

namespace zentavo::tool {

char16_t CharacterArgument(const std::string& argument) {
  const String text = FromUtf8(argument);
  if (text.size() != 1) throw UsageError(u"'" + Excerpt(text) + u"' is not one character");
  return text.front();
}

std::vector<double> NumberArguments(const std::vector<std::string>& arguments) {
  std::vector<double> numbers;
  numbers.reserve(arguments.size());
  for (const std::string& argument : arguments) numbers.push_back(ReadNumberArgument(argument));
  return numbers;
}

std::vector<String> TextArguments(const std::vector<std::string>& arguments) {
  std::vector<String> texts;
  texts.reserve(arguments.size());
  for (const std::string& argument : arguments) texts.push_back(FromUtf8(argument));
  return texts;
}

std::vector<std::string> SplitList(const std::string& argument) {
  std::vector<std::string> pieces;
  std::size_t end = 0;
  for (std::size_t start = 0; end != std::string::npos; start = end + 1) {
    end = argument.find(',', start);
    pieces.push_back(argument.substr(start, end - start));
  }
  return pieces;
}

}  // namespace zentavo::tool
