// A variable of the environment for the life of a scope.
#pragma once

#include <cstdlib>
#include <string>
#include <utility>

namespace zentavo::testing {

class EnvironmentVariable {
 public:
  EnvironmentVariable(std::string name, const std::string& value) : name_(std::move(name)) {
    Set(value.c_str());
  }
  ~EnvironmentVariable() { Set(""); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  // The empty text is as good as none for those who read it.
  void Set(const char* value) const {
#ifdef _WIN32
    _putenv_s(name_.c_str(), value);
#else
    setenv(name_.c_str(), value, 1);
#endif
  }

  const std::string name_;
};

}  // namespace zentavo::testing
