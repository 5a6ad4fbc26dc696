#include "tools/zentavo/files.h"

#include <cstdio>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"

namespace zentavo::tool {

namespace {

constexpr StringView kCannotOpen = u"Cannot open file \"%s\". %s";
constexpr StringView kCannotRead = u"Cannot read file \"%s\". %s";
constexpr StringView kCannotWrite = u"Cannot write file \"%s\". %s";

String Message(StringView pattern, const String& name, platform::SystemError error) {
  return Format(pattern, {name, platform::SystemErrorText(error)});
}

void WriteToStandardOutput(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
    throw EWriteError(Message(kCannotWrite, u"-", platform::LastSystemError()));
  }
}

void FlushStandardOutput() {
  if (std::fflush(stdout) != 0) {
    throw EWriteError(Message(kCannotWrite, u"-", platform::LastSystemError()));
  }
}

}  // namespace

void PrintText(StringView text) {
  PrintUtf8(ToUtf8(text));
}

void PrintUtf8(std::string_view text) {
  WriteToStandardOutput(text);
  if (text.empty() || text.back() != '\n') WriteToStandardOutput("\n");
  FlushStandardOutput();
}

InputFile::InputFile(const std::string& name) : name_(FromUtf8(name)) {
  if (name == "-") return;
  const platform::SystemError error =
      file_.Open(name_, platform::FileAccess::kRead, platform::FileSharing::kReadWrite,
                 platform::FileCreation::kOpenExisting);
  if (error != 0) throw EFOpenError(Message(kCannotOpen, name_, error));
}

std::size_t InputFile::Read(std::span<char> buffer) {
  platform::SystemError error = 0;
  std::size_t done = 0;
  if (file_.IsOpen()) {
    error = file_.Read(std::as_writable_bytes(buffer), done);
  } else {
    done = std::fread(buffer.data(), 1, buffer.size(), stdin);
    if (std::ferror(stdin) != 0) error = platform::LastSystemError();
  }
  if (error != 0) throw EReadError(Message(kCannotRead, name_, error));
  return done;
}

std::string ReadWholeInput(const std::string& name) {
  constexpr std::size_t kBlock = 65536;
  InputFile input(name);
  std::string bytes;
  std::size_t done = 0;
  do {
    const std::size_t size = bytes.size();
    bytes.resize(size + kBlock);
    done = input.Read({bytes.data() + size, kBlock});
    bytes.resize(size + done);
  } while (done > 0);
  return bytes;
}

OutputFile::OutputFile(const std::string& name) {
  if (name != "-") file_.emplace(FromUtf8(name));
}

void OutputFile::Write(std::string_view bytes) {
  if (!file_) return WriteToStandardOutput(bytes);
  file_->WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
}

void OutputFile::Commit() {
  if (!file_) return FlushStandardOutput();
  file_->Commit();
}

}  // namespace zentavo::tool
