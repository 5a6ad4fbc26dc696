// Values of the command line. Each raises UsageError with the argument when it is no such value.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zentavo/framework/text.h"

namespace zentavo::tool {

char16_t CharacterArgument(const std::string& argument);
std::vector<double> NumberArguments(const std::vector<std::string>& arguments);
std::vector<String> TextArguments(const std::vector<std::string>& arguments);

// The pieces between ','s.
std::vector<std::string> SplitList(const std::string& argument);

}  // namespace zentavo::tool
