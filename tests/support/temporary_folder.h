// A folder of its own for one test, removed with all its content afterwards.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "zentavo/platform/clock.h"

namespace zentavo::testing {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    static constinit std::atomic<std::uint32_t> last{0};
    do {
      path_ =
          std::filesystem::temp_directory_path() /
          (u8"zentavo-δοκιμή-" + Digits(platform::CurrentThreadNumber()) + u8"-" + Digits(++last));
    } while (!std::filesystem::create_directory(path_));
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  std::u16string Path() const { return path_.u16string(); }
  // The path of `name` in the folder.
  std::u16string operator/(std::u16string_view name) const {
    return (path_ / std::u16string(name)).u16string();
  }

 private:
  static std::u8string Digits(std::uint32_t number) {
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
  }

  std::filesystem::path path_;
};

}  // namespace zentavo::testing
