#include "tools/zentavo/command.h"

#include <algorithm>
#include <cstdio>
#include <optional>

#include "zentavo/framework/number_text.h"
#include "zentavo/framework/text.h"

namespace zentavo::tool {

void PrintMessage(std::string message) {
  const auto is_line_break = [](char byte) { return byte == '\n' || byte == '\r'; };
  std::replace_if(message.begin(), message.end(), is_line_break, ' ');
  std::fprintf(stderr, "zentavo: %s\n", message.c_str());
}

CLI::Option* AddRepeated(CLI::App& command, const std::string& names,
                         std::vector<std::string>& values, const std::string& help) {
  return command.add_option(names, values, help)->expected(1)->take_all()->allow_extra_args(false);
}

NamedValue SplitNamedValue(const std::string& argument) {
  const std::size_t equals = argument.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw UsageError(u"'" + Excerpt(FromUtf8(argument)) + u"' is not NAME=VALUE");
  }
  return {argument.substr(0, equals), argument.substr(equals + 1)};
}

double ReadNumberArgument(const std::string& argument) {
  const std::optional<double> number = TryStrToFloat(argument, '.');
  if (!number) throw UsageError(u"'" + Excerpt(FromUtf8(argument)) + u"' is not a number");
  return *number;
}

}  // namespace zentavo::tool
