#include "zentavo/framework/file_names.h"

#include <algorithm>

#include "zentavo/framework/exception.h"
#include "zentavo/platform/directories.h"
#include "zentavo/platform/files.h"

namespace zentavo {

namespace {

// Where the file name starts: behind the last delimiter.
std::size_t NameStart(StringView file_name) {
  const auto last =
      std::find_if(file_name.rbegin(), file_name.rend(), platform::IsPathDelimiter).base();
  return static_cast<std::size_t>(last - file_name.begin());
}

std::size_t ExtensionStart(StringView file_name) {
  const std::size_t dot = file_name.rfind(u'.');
  return dot != file_name.npos && dot >= NameStart(file_name) ? dot : file_name.size();
}

// A drive's colon does not end a folder.
bool EndsWithSeparator(StringView path) {
  return !path.empty() && path.back() != u':' && platform::IsPathDelimiter(path.back());
}

StringView WithoutSeparators(StringView path) {
  while (EndsWithSeparator(path)) path.remove_suffix(1);
  return path;
}

}  // namespace

String ExtractFilePath(StringView file_name) {
  return String(file_name.substr(0, NameStart(file_name)));
}

String ExtractFileName(StringView file_name) {
  return String(file_name.substr(NameStart(file_name)));
}

String ExtractFileExt(StringView file_name) {
  return String(file_name.substr(ExtensionStart(file_name)));
}

String ChangeFileExt(StringView file_name, StringView extension) {
  return String(file_name.substr(0, ExtensionStart(file_name))).append(extension);
}

String IncludeTrailingPathDelimiter(StringView path) {
  String result(path);
  if (!EndsWithSeparator(path)) result += platform::PathSeparator();
  return result;
}

String ExcludeTrailingPathDelimiter(StringView path) {
  if (EndsWithSeparator(path)) path.remove_suffix(1);
  return String(path);
}

bool FileExists(StringView file_name) {
  return platform::FileExists(file_name);
}

bool DirectoryExists(StringView path) {
  return platform::DirectoryExists(path);
}

bool ForceDirectories(StringView path) {
  if (path.empty()) throw EInOutError(u"Unable to create directory");
  if (platform::DirectoryExists(path)) return true;
  // Each folder of the path in turn, the outermost first.
  for (std::size_t end = 1; end < path.size(); ++end) {
    if (!platform::IsPathDelimiter(path[end])) continue;
    const StringView folder = path.substr(0, end);
    if (!platform::DirectoryExists(folder)) platform::MakeDirectory(folder);
  }
  const StringView last = WithoutSeparators(path);
  return platform::MakeDirectory(last) == 0 || platform::DirectoryExists(last);
}

}  // namespace zentavo
