// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/OwnItems.h"

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"
#include "platform/posix/FileDescriptor.h"

namespace {

/// Changes one item, open as a handle only (O_PATH); 0 or an errno value.
using Change = std::function<int(int item, const struct stat& status)>;

void keepFirst(Status& status, Status other) {
  if (status && !other) status = std::move(other);
}

Status forOwnItems(int folder, const std::string& name, uid_t user, const Change& change) {
  const FileDescriptor item(::openat(folder, name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!item || ::fstat(item.get(), &status) != 0) return systemError(errno, name);
  if (status.st_uid != user) return {};
  Status result;
  if (const int error = change(item.get(), status)) result = systemError(error, name);
  if (!S_ISDIR(status.st_mode)) return result;

  const FileDescriptor inner(::openat(item.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!inner) return systemError(errno, name);
  const auto entries = listFolder(inner.get());
  if (!entries) return entries.error();
  for (const FolderEntry& entry : *entries) keepFirst(result, forOwnItems(inner.get(), entry.name, user, change));
  return result;
}

bool isFileOrFolder(const struct stat& status) { return S_ISREG(status.st_mode) || S_ISDIR(status.st_mode); }

/// A path that leads to the open item itself, for calls that take no handle.
std::string pathOf(int item) { return "/proc/self/fd/" + std::to_string(item); }

}  // namespace

Status handOverOwnItems(int folder, const std::string& name, uid_t user, gid_t group) {
  return forOwnItems(folder, name, user, [&](int item, const struct stat& /*status*/) {
    return ::fchownat(item, "", user, group, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) != 0 ? errno : 0;
  });
}

Status setModeOfOwnItems(int folder, const std::string& name, uid_t user, mode_t mode) {
  return forOwnItems(folder, name, user, [&](int item, const struct stat& status) {
    if (!isFileOrFolder(status)) return 0;
    return ::chmod(pathOf(item).c_str(), mode) != 0 ? errno : 0;
  });
}

Status removeQuarantineMarkFromOwnItems(int folder, const std::string& name, uid_t user) {
  return forOwnItems(folder, name, user, [&](int item, const struct stat& status) {
    if (!isFileOrFolder(status)) return 0;
    int error = 0;
    // A volume written by a Mac may have the bare name.
    for (const char* const mark : {"user.com.apple.quarantine", "com.apple.quarantine"}) {
      if (::removexattr(pathOf(item).c_str(), mark) != 0 && errno != ENODATA && errno != ENOTSUP) error = errno;
    }
    return error;
  });
}
