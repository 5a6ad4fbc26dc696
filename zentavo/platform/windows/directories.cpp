#include "zentavo/platform/directories.h"

#include <windows.h>

#include <aclapi.h>

#include <memory>

#include "zentavo/platform/windows/wide.h"

namespace zentavo::platform {

namespace {

constexpr DWORD kFullAccess = 0x1F01FF;

struct FreeLocal {
  void operator()(void* memory) const { LocalFree(memory); }
};
struct FreeIdentifier {
  void operator()(void* identifier) const { FreeSid(identifier); }
};
using Identifier = std::unique_ptr<void, FreeIdentifier>;
using Descriptor = std::unique_ptr<void, FreeLocal>;
using AccessList = std::unique_ptr<ACL, FreeLocal>;

Identifier AuthenticatedUsers() {
  SID_IDENTIFIER_AUTHORITY authority = {{0, 0, 0, 0, 0, 5}};
  PSID identifier = nullptr;
  AllocateAndInitializeSid(&authority, 1, SECURITY_AUTHENTICATED_USER_RID, 0, 0, 0, 0, 0, 0, 0,
                           &identifier);
  return Identifier(identifier);
}

// A path's access list, and the system's memory that it lies in.
struct PathAccess {
  Descriptor descriptor;
  ACL* list = nullptr;  // null: everyone may do everything
};

bool ReadAccess(std::wstring& path, PathAccess& access) {
  PSECURITY_DESCRIPTOR descriptor = nullptr;
  const DWORD error = GetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                            nullptr, nullptr, &access.list, nullptr, &descriptor);
  access.descriptor.reset(descriptor);
  return error == ERROR_SUCCESS;
}

enum class Granted { kYes, kNo, kUnknown };

// Where the system cannot compute rights at all, the access counts as not granted: adding the entry
// once more does no harm.
Granted AlreadyGranted(ACL* list, TRUSTEE_W& trustee) {
  if (list == nullptr) return Granted::kYes;
  ACCESS_MASK rights = 0;
  const DWORD error = GetEffectiveRightsFromAclW(list, &trustee, &rights);
  if (error == ERROR_INVALID_FUNCTION || error == ERROR_CALL_NOT_IMPLEMENTED) return Granted::kNo;
  if (error != ERROR_SUCCESS) return Granted::kUnknown;
  return (rights & kFullAccess) == kFullAccess ? Granted::kYes : Granted::kNo;
}

bool AddEntry(std::wstring& path, ACL* list, const TRUSTEE_W& trustee) {
  EXPLICIT_ACCESS_W entry{};
  entry.grfAccessPermissions = kFullAccess;
  entry.grfAccessMode = GRANT_ACCESS;
  entry.grfInheritance = SUB_CONTAINERS_AND_OBJECTS_INHERIT;
  entry.Trustee = trustee;
  PACL merged = nullptr;
  if (SetEntriesInAclW(1, &entry, list, &merged) != ERROR_SUCCESS) return false;
  const AccessList owner(merged);
  return SetNamedSecurityInfoW(path.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                               nullptr, merged, nullptr) == ERROR_SUCCESS;
}

DWORD AttributesOf(std::u16string_view path) {
  return GetFileAttributesW(SystemPath(path).c_str());
}

}  // namespace

char16_t PathSeparator() {
  return u'\\';
}

bool IsPathDelimiter(char16_t unit) {
  return unit == u'\\' || unit == u'/' || unit == u':';
}

bool DirectoryExists(std::u16string_view path) {
  const DWORD attributes = AttributesOf(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

SystemError MakeDirectory(std::u16string_view path) {
  return ErrorOf(CreateDirectoryW(SystemPath(path).c_str(), nullptr));
}

SystemError RemoveEmptyDirectory(std::u16string_view path) {
  return ErrorOf(RemoveDirectoryW(SystemPath(path).c_str()));
}

std::u16string TemporaryDirectory() {
  wchar_t path[MAX_PATH + 1];
  return FromWide({path, GetTempPathW(MAX_PATH + 1, path)});
}

bool GrantFullAccess(std::u16string_view path) {
  std::wstring name = SystemPath(path);
  const Identifier users = AuthenticatedUsers();
  PathAccess access;
  if (!users || !ReadAccess(name, access)) return false;
  TRUSTEE_W trustee{};
  BuildTrusteeWithSidW(&trustee, users.get());
  switch (AlreadyGranted(access.list, trustee)) {
    case Granted::kYes: return true;
    case Granted::kNo: return AddEntry(name, access.list, trustee);
    case Granted::kUnknown: break;
  }
  return false;
}

}  // namespace zentavo::platform
