// What the commands read and write. A file named "-" is standard input or output; names are UTF-8.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "zentavo/framework/text.h"
#include "zentavo/platform/files.h"

namespace zentavo::tool {

// Prints `text`, followed by one line feed unless it ends in one.
void PrintText(StringView text);
void PrintUtf8(std::string_view text);

// A source of bytes. Neither copied nor moved.
class InputFile {
 public:
  // Raises EFOpenError when the file cannot be opened.
  explicit InputFile(const std::string& name);
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Returns how many bytes were read, less than there is room for only at the end. Raises
  // EReadError.
  std::size_t Read(std::span<char> buffer);

 private:
  String name_;
  platform::File file_;  // closed for standard input
};

// All bytes of the file.
std::string ReadWholeInput(const std::string& name);

// A target of bytes that appears whole or not at all: what is written goes to a temporary file
// beside the target, which Commit puts in the target's place. Standard output is written as it
// comes. Neither copied nor moved.
class OutputFile {
 public:
  // Raises EFCreateError when no file can be made there.
  explicit OutputFile(const std::string& name);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Without Commit before, the target is as it was.
  ~OutputFile();

  // Both raise EWriteError.
  void Write(std::string_view bytes);
  void Commit();

 private:
  String target_;     // empty for standard output
  String temporary_;  // empty when there is none
  platform::File file_;
};

}  // namespace zentavo::tool
