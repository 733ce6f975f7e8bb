// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/clonefile.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/stdio.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

#include "platform/files/SystemCalls.h"

namespace {

constexpr const char* quarantineMark = "com.apple.quarantine";

/// Whether the system keeps the attribute itself, for each item anew.
bool isSystemsOwn(std::string_view name) {
  constexpr std::array<std::string_view, 4> own = {"com.apple.macl", "com.apple.provenance", "com.apple.rootless",
                                                   "com.apple.system.Security"};
  return std::ranges::find(own, name) != own.end();
}

bool isUnsupported(int error) { return error == ENOTSUP || error == EOPNOTSUPP; }

}  // namespace

FileDescriptor openFolderHandle(int folder, const char* name, bool followLink) {
  const int flags = O_DIRECTORY | O_CLOEXEC | (followLink ? 0 : O_NOFOLLOW);
  FileDescriptor handle(::openat(folder, name, O_SEARCH | flags));
  // Systems before O_SEARCH want the right to read the folder as well.
  if (!handle && errno == EINVAL) handle = FileDescriptor(::openat(folder, name, O_RDONLY | flags));
  return handle;
}

int cloneFile(int source, int targetFolder, const char* name, bool losesQuarantine) {
  if (::fclonefileat(source, targetFolder, name, CLONE_NOFOLLOW | CLONE_NOOWNERCOPY) != 0) return errno;
  const FileDescriptor clone(::openat(targetFolder, name, O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!clone || ::fstat(clone.get(), &status) != 0) return errno;
  // A clone of a locked file is locked, too.
  if (status.st_flags != 0 && ::fchflags(clone.get(), 0) != 0 && !isUnsupported(errno)) return errno;
  if (!losesQuarantine || ::fremovexattr(clone.get(), quarantineMark, 0) == 0) return 0;
  return errno == ENOATTR ? 0 : errno;
}

int copyFileRange(int source, int target, std::int64_t offset, std::int64_t length) {
  return copyByHand(source, target, offset, length);
}

Result<std::map<std::string, std::string>> extendedAttributes(int item) {
  std::map<std::string, std::string> attributes;
  const ssize_t length = ::flistxattr(item, nullptr, 0, 0);
  if (length < 0 && isUnsupported(errno)) return attributes;
  if (length < 0) return systemError(errno, "");
  std::string names(static_cast<std::size_t>(length), '\0');
  const ssize_t got = ::flistxattr(item, names.data(), names.size(), 0);
  if (got < 0) return systemError(errno, "");
  names.resize(static_cast<std::size_t>(got));
  for (std::string_view rest = names; !rest.empty();) {
    const std::string name(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (isSystemsOwn(name)) continue;
    const ssize_t size = ::fgetxattr(item, name.c_str(), nullptr, 0, 0, 0);
    if (size < 0) return systemError(errno, "");
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t read = ::fgetxattr(item, name.c_str(), value.data(), value.size(), 0, 0);
    if (read < 0) return systemError(errno, "");
    value.resize(static_cast<std::size_t>(read));
    attributes.emplace(name, std::move(value));
  }
  return attributes;
}

int copyExtendedAttributes(int source, int target, bool losesQuarantine) {
  const auto attributes = extendedAttributes(source);
  if (!attributes) return attributes.error().code;
  for (const auto& [name, value] : *attributes) {
    if (losesQuarantine && name == quarantineMark) continue;
    if (::fsetxattr(target, name.c_str(), value.data(), value.size(), 0, 0) != 0) {
      return isUnsupported(errno) ? 0 : errno;
    }
  }
  return 0;
}

int exchangeItems(int folder, const char* name, int otherFolder, const char* otherName) {
  return ::renameatx_np(folder, name, otherFolder, otherName, RENAME_SWAP) != 0 ? errno : 0;
}

int renameToFreeName(int folder, const char* name, int newFolder, const char* newName) {
  return ::renameatx_np(folder, name, newFolder, newName, RENAME_EXCL) != 0 ? errno : 0;
}

bool isMissingOperation(int error) { return error == EINVAL || error == ENOSYS || isUnsupported(error); }

Result<MountedFileSystem> fileSystemOf(int item) {
  struct stat status {};
  struct statfs mounted {};
  if (::fstat(item, &status) != 0 || ::fstatfs(item, &mounted) != 0) return systemError(errno, "");
  const auto* const words = mounted.f_fsid.val;
  return MountedFileSystem{
      .device = static_cast<std::uint32_t>(status.st_dev),
      .mount = (std::uint64_t{static_cast<std::uint32_t>(words[0])} << 32U) | static_cast<std::uint32_t>(words[1])};
}

Result<std::uint64_t> availableSpace(int item) {
  // The numbers of statvfs() are too narrow for a large disk.
  struct statfs mounted {};
  if (::fstatfs(item, &mounted) != 0) return systemError(errno, "");
  return std::uint64_t{mounted.f_bavail} * mounted.f_bsize;
}

bool mayShareBlocks(int item, int otherItem) {
  struct statfs mounted {};
  struct stat one {};
  struct stat other {};
  if (::fstatfs(item, &mounted) != 0 || ::fstat(item, &one) != 0 || ::fstat(otherItem, &other) != 0) return false;
  return one.st_dev == other.st_dev && std::string_view(mounted.f_fstypename) == "apfs";
}

int flushFileSystem(int item) {
  if (::fsync_volume_np(item, SYNC_VOLUME_FULLSYNC | SYNC_VOLUME_WAIT) == 0) return 0;
  // A file system of another system, or one across the network.
  ::sync();
  if (::fcntl(item, F_FULLFSYNC) == 0 || ::fsync(item) == 0) return 0;
  return isUnsupported(errno) || errno == EINVAL ? 0 : errno;
}

bool isImmutable(int folder, const char* name) {
  struct stat status {};
  constexpr unsigned kept = UF_IMMUTABLE | UF_APPEND | SF_IMMUTABLE | SF_APPEND | SF_RESTRICTED;
  return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && (status.st_flags & kept) != 0;
}

std::string_view protectionOf(std::string_view path) {
  const auto holds = [&](std::string_view part) { return path.find(part) != std::string_view::npos; };
  if (holds(".app/") || path.ends_with(".app")) {
    return "macOS does not let the installer change this application: allow it in System Settings > Privacy & Security "
           "> App Management, and install again";
  }
  if (holds("/Desktop/") || holds("/Documents/") || holds("/Downloads/") || path.starts_with("/Volumes/")) {
    return "macOS does not let the installer change this folder: allow it in System Settings > Privacy & Security > "
           "Files and Folders, and install again";
  }
  return {};
}
