// What the commands read and write. A file named "-" is standard input or output; names are UTF-8.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "zentavo/framework/atomic_file.h"
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

// A target of bytes: a file that is replaced as a whole, and only by Commit, or standard output,
// which is written as it comes.
class OutputFile {
 public:
  // Raises EFCreateError when no file can be made there.
  explicit OutputFile(const std::string& name);

  void Write(std::string_view bytes);  // raises EWriteError
  void Commit();                       // raises EFCreateError

 private:
  std::optional<TAtomicFileStream> file_;  // none for standard output
};

}  // namespace zentavo::tool
