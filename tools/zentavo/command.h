// How the tool's commands are made.
//
// A command is one source file with one function, declared below and listed in main.cpp. It adds a
// subcommand to the program's parser, lets the options write into a struct that the callback owns,
// and does its work in the callback:
//
//   struct HashOptions { std::string text; };
//
//   void AddHashCommand(CLI::App& program) {
//     auto options = std::make_shared<HashOptions>();
//     CLI::App& command = *program.add_subcommand("hash", "Print the hash of a text");
//     command.add_option("TEXT", options->text, "The text")->required();
//     command.callback([options] { PrintText(Hash(FromUtf8(options->text))); });
//   }
//
// The callback reports a failure by raising the library's exceptions (exit 1), wrong usage that the
// parser cannot see by raising UsageError (exit 2). Arguments are UTF-8.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <utility>
#include <vector>

#include "zentavo/framework/exception.h"

namespace zentavo::tool {

// The command line is wrong; the program ends with 2 and a hint.
class UsageError : public Exception {
 public:
  using Exception::Exception;
};

// A failure with further lines for a person at a terminal, such as the place at fault.
class DetailedError : public Exception {
 public:
  // `details` are lines in UTF-8, each with its line feed.
  DetailedError(String message, std::string details)
      : Exception(std::move(message)), details_(std::move(details)) {}
  const std::string& Details() const { return details_; }

 private:
  std::string details_;
};

// Prints "zentavo: MESSAGE" as one line on standard error; line breaks in it become blanks.
void PrintMessage(std::string message);

// An option that takes one argument each time it is given, any text, and may be given many times.
CLI::Option* AddRepeated(CLI::App& command, const std::string& names,
                         std::vector<std::string>& values, const std::string& help);

// Splits NAME=VALUE at the first '='. Raises UsageError when there is none or the name is empty.
struct NamedValue {
  std::string name;
  std::string value;
};
NamedValue SplitNamedValue(const std::string& argument);
// The number that the argument spells, with '.'. Raises UsageError when it spells none.
double ReadNumberArgument(const std::string& argument);

void AddJsonCommand(CLI::App& program);
void AddAccessCommand(CLI::App& program);
void AddAmountCommand(CLI::App& program);
void AddDataCommand(CLI::App& program);  // where the data sets over databases are built
void AddEventCommand(CLI::App& program);
void AddExprCommand(CLI::App& program);
void AddFormulaCommand(CLI::App& program);
void AddHttpCommand(CLI::App& program);
void AddHtmlCommand(CLI::App& program);
void AddIniCommand(CLI::App& program);
void AddMatchCommand(CLI::App& program);
void AddOptimiseCommand(CLI::App& program);
void AddSettingCommand(CLI::App& program);
void AddSqlCommand(CLI::App& program);
void AddTextCommand(CLI::App& program);
void AddWsCommand(CLI::App& program);

}  // namespace zentavo::tool
