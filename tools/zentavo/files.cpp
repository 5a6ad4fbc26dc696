#include "tools/zentavo/files.h"

#include <cstdio>

#include "zentavo/framework/exception.h"
#include "zentavo/framework/format.h"
#include "zentavo/framework/number_text.h"

namespace zentavo::tool {

namespace {

constexpr StringView kCannotOpen = u"Cannot open file \"%s\". %s";
constexpr StringView kCannotCreate = u"Cannot create file \"%s\". %s";
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

// Opens a file beside `target` that no other program has, and sets `name`.
platform::SystemError CreateBeside(StringView target, platform::File& file, String& name) {
  constexpr int kAttempts = 1000;
  platform::SystemError error = 0;
  for (int i = 0; i < kAttempts; ++i) {
    name = String(target) + u"." + IntToStr(i) + u".tmp";
    error = file.Open(name, platform::FileAccess::kWrite, platform::FileSharing::kNone,
                      platform::FileCreation::kCreateNew);
    if (error == 0 || !platform::FileExists(name)) break;
  }
  return error;
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
  if (name == "-") return;
  target_ = platform::ResolveLink(FromUtf8(name));
  String temporary;
  const platform::SystemError error = CreateBeside(target_, file_, temporary);
  if (error != 0) throw EFCreateError(Message(kCannotCreate, target_, error));
  temporary_ = std::move(temporary);
}

OutputFile::~OutputFile() {
  file_.Close();
  if (!temporary_.empty()) platform::RemoveFile(temporary_);
}

void OutputFile::Write(std::string_view bytes) {
  if (target_.empty()) return WriteToStandardOutput(bytes);
  std::size_t done = 0;
  const platform::SystemError error = file_.Write(std::as_bytes(std::span(bytes)), done);
  if (error != 0) throw EWriteError(Message(kCannotWrite, target_, error));
}

void OutputFile::Commit() {
  if (target_.empty()) return FlushStandardOutput();
  platform::SystemError error = file_.Flush();
  file_.Close();
  if (error == 0) error = platform::ReplaceFileBy(temporary_, target_);
  if (error != 0) throw EWriteError(Message(kCannotWrite, target_, error));
  temporary_.clear();
}

}  // namespace zentavo::tool
