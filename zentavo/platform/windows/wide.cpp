#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

// A directory's path leaves room for a file name of the old form within the limit of 260 units.
constexpr std::size_t kLongPath = 248;

std::wstring FullPath(const std::wstring& path) {
  std::wstring full(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
  full.resize(
      GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full;
}

}  // namespace

std::wstring SystemPath(std::u16string_view path) {
  if (path.find(u'\0') != path.npos) return {};
  std::wstring wide = ToWide(path);
  if (wide.size() < kLongPath || wide.starts_with(LR"(\\?\)")) return wide;
  const std::wstring full = FullPath(wide);
  if (full.empty()) return wide;
  return full.starts_with(LR"(\\)") ? LR"(\\?\UNC)" + full.substr(1) : LR"(\\?\)" + full;
}

}  // namespace zentavo::platform
