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
  // A clone of a locked file is locked, too. The other flags say how its content is kept, such as UF_COMPRESSED.
  constexpr unsigned locks = UF_IMMUTABLE | UF_APPEND | SF_IMMUTABLE | SF_APPEND;
  if ((status.st_flags & locks) != 0 && ::fchflags(clone.get(), status.st_flags & ~locks) != 0) return errno;
  if (!losesQuarantine) return 0;
  // Only who may write to an item may change its attributes. The caller gives the final mode.
  if (::fchmod(clone.get(), S_IRUSR | S_IWUSR) != 0) return errno;
  if (::fremovexattr(clone.get(), quarantineMark.data(), 0) == 0) return 0;
  return errno == ENOATTR ? 0 : errno;
}

int copyFileRange(int source, int target, std::int64_t offset, std::int64_t length) {
  return copyByHand(source, target, offset, length);
}

ssize_t listAttributes(int item, char* names, std::size_t size) { return ::flistxattr(item, names, size, 0); }

ssize_t readAttribute(int item, const char* name, char* value, std::size_t size) {
  return ::fgetxattr(item, name, value, size, 0, 0);
}

int writeAttribute(int item, const char* name, const char* value, std::size_t size) {
  return ::fsetxattr(item, name, value, size, 0, 0) != 0 ? errno : 0;
}

bool isOfContent(std::string_view attribute) {
  // The system keeps these itself, for each item anew.
  constexpr std::array<std::string_view, 4> own = {"com.apple.macl", "com.apple.provenance", "com.apple.rootless",
                                                   "com.apple.system.Security"};
  return std::ranges::find(own, attribute) == own.end();
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
