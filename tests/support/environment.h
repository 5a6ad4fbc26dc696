// A variable of the environment for the life of a scope.
#pragma once

#include <cstdlib>
#include <string>
#include <utility>

namespace zentavo::testing {

// The empty text is as good as none for those who read it.
class EnvironmentVariable {
 public:
  EnvironmentVariable(std::string name, const std::string& value) : name_(std::move(name)) {
    if (const char* const before = std::getenv(name_.c_str())) before_ = before;
    Set(value);
  }
  ~EnvironmentVariable() { Set(before_); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  void Set(const std::string& value) const {
#ifdef _WIN32
    _putenv_s(name_.c_str(), value.c_str());
#else
    setenv(name_.c_str(), value.c_str(), 1);
#endif
  }

  const std::string name_;
  std::string before_;
};

}  // namespace zentavo::testing
