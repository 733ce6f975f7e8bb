// SPDX-License-Identifier: Apache-2.0

#include "platform/files/TreeRemoval.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"

namespace {

/// Whether the folder lets only the owner of an item, or its own, remove the item, and this thread is neither.
bool isKeptBySticky(int folder, const std::string& name) {
  struct stat holding {};
  struct stat held {};
  if (::fstatat(folder, ".", &holding, 0) != 0 || (holding.st_mode & S_ISVTX) == 0) return false;
  if (::fstatat(folder, name.c_str(), &held, AT_SYMLINK_NOFOLLOW) != 0) return false;
  return holding.st_uid != ::geteuid() && held.st_uid != ::geteuid();
}

}  // namespace

Status removeTree(int folder, const std::string& name) {
  if (::unlinkat(folder, name.c_str(), 0) == 0) return {};
  if (errno != EISDIR && errno != EPERM) return systemError(errno, name);
  const int unlinkError = errno;
  const FileDescriptor inner(::openat(folder, name.c_str(), folderToRead | O_NOFOLLOW));
  if (!inner) return systemError(errno == ENOTDIR || errno == ELOOP ? unlinkError : errno, name);
  const auto entries = listFolder(inner.get());
  if (!entries) return entries.error();
  for (const FolderEntry& entry : *entries) {
    if (Status removed = removeTree(inner.get(), entry.name); !removed) return removed;
  }
  return systemStatus(::unlinkat(folder, name.c_str(), AT_REMOVEDIR) != 0 ? errno : 0, name);
}

Status checkRemovable(int folder, const std::string& name, bool withOwnRights) {
  if (isImmutable(folder, name.c_str())) return systemError(EPERM, name);
  const bool asksRights = withOwnRights && ::geteuid() != 0;
  if (asksRights && ::faccessat(folder, ".", W_OK | X_OK, AT_EACCESS) != 0) return systemError(errno, name);
  if (asksRights && isKeptBySticky(folder, name)) return systemError(EPERM, name);
  const FileDescriptor inner(::openat(folder, name.c_str(), folderToRead | O_NOFOLLOW));
  if (!inner) {
    const bool isFolder = errno != ENOTDIR && errno != ELOOP;
    // Removing a file or a link needs rights to its folder only. EACCES: the elevation looks into it and removes it.
    return isFolder && withOwnRights ? systemError(errno, name) : Status();
  }
  const auto entries = listFolder(inner.get());
  if (!entries) return entries.error();
  for (const FolderEntry& entry : *entries) {
    if (Status removable = checkRemovable(inner.get(), entry.name, withOwnRights); !removable) return removable;
  }
  return {};
}
