#include "zentavo/platform/process.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <utility>
#include <vector>

#include "zentavo/platform/files.h"
#include "zentavo/platform/linux/path_bytes.h"

namespace zentavo::platform {

namespace {

// The argument list as the system takes it: pointers into texts that it keeps.
class ArgumentList {
 public:
  ArgumentList(std::string program, std::span<const std::u16string> arguments) {
    texts_.push_back(std::move(program));
    for (const std::u16string& argument : arguments) {
      texts_.push_back(*EncodeCodePage(argument, kCodePageUtf8));
    }
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  ArgumentList(const ArgumentList&) = delete;
  ArgumentList& operator=(const ArgumentList&) = delete;

  // Starts the program; returns 0 or an error code.
  int Spawn(pid_t& process) const {
    return posix_spawn(&process, pointers_[0], nullptr, nullptr, pointers_.data(), environ);
  }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

SystemError WaitFor(pid_t process, int& status) {
  while (waitpid(process, &status, 0) == -1) {
    if (errno != EINTR) return LastSystemError();
  }
  return 0;
}

std::int32_t ExitCode(int status) {
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

SystemError RunToEnd(const ArgumentList& arguments, std::int32_t& exit_code) {
  pid_t process = 0;
  if (const int error = arguments.Spawn(process)) return static_cast<SystemError>(error);
  int status = 0;
  if (const SystemError error = WaitFor(process, status)) return error;
  exit_code = ExitCode(status);
  return 0;
}

// An intermediate process starts the program and ends at once with the error code, all of which
// fit in an exit code. So the program is nobody's child here, and nobody has to wait for it.
SystemError StartDetached(const ArgumentList& arguments) {
  const pid_t intermediate = fork();
  if (intermediate == -1) return LastSystemError();
  if (intermediate == 0) {
    pid_t process = 0;
    _exit(arguments.Spawn(process));
  }
  int status = 0;
  if (const SystemError error = WaitFor(intermediate, status)) return error;
  return static_cast<SystemError>(ExitCode(status));
}

bool HasZeroUnit(std::span<const std::u16string> arguments) {
  for (const std::u16string& argument : arguments) {
    if (argument.find(u'\0') != argument.npos) return true;
  }
  return false;
}

}  // namespace

std::u16string ProgramPath() {
  return ResolveLink(u"/proc/self/exe");
}

SystemError StartProgram(std::u16string_view path, std::span<const std::u16string> arguments, int,
                         ProcessWait wait, std::int32_t& exit_code) {
  if (HasZeroUnit(arguments)) return EINVAL;
  const ArgumentList list(PathBytes(path), arguments);
  return wait == ProcessWait::kUntilEnd ? RunToEnd(list, exit_code) : StartDetached(list);
}

int SystemVersionCode() {
  return 0;
}

}  // namespace zentavo::platform
