// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files/SystemCalls.h"

namespace {

/// Whether another way of copying may do what this one could not: the two file systems do not go together, or this
/// kernel cannot.
bool isUnsupported(int error) {
  return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM;
}

constexpr std::int64_t mostAtOnce = std::int64_t{1} << 30U;

// Each of these advances offset and length by what it has copied, and stops with an errno value.

int copyInKernel(int source, int target, std::int64_t& offset, std::int64_t& length) {
  while (length > 0) {
    off64_t from = offset;
    off64_t to = offset;
    const ssize_t copied =
        ::copy_file_range(source, &from, target, &to, static_cast<std::size_t>(std::min(length, mostAtOnce)), 0);
    if (copied < 0 && errno == EINTR) continue;
    if (copied < 0) return errno;
    if (copied == 0) return EIO;  // the source has become shorter
    offset += copied;
    length -= copied;
  }
  return 0;
}

int copyBySendfile(int source, int target, std::int64_t& offset, std::int64_t& length) {
  if (::lseek(target, offset, SEEK_SET) < 0) return errno;
  while (length > 0) {
    off_t from = offset;
    const ssize_t copied = ::sendfile(target, source, &from, static_cast<std::size_t>(std::min(length, mostAtOnce)));
    if (copied < 0 && errno == EINTR) continue;
    if (copied < 0) return errno;
    if (copied == 0) return EIO;
    offset += copied;
    length -= copied;
  }
  return 0;
}

}  // namespace

FileDescriptor openFolderHandle(int folder, const char* name, bool followLink) {
  return FileDescriptor(::openat(folder, name, O_PATH | O_DIRECTORY | O_CLOEXEC | (followLink ? 0 : O_NOFOLLOW)));
}

int cloneFile(int /*source*/, int /*targetFolder*/, const char* /*name*/, bool /*losesQuarantine*/) {
  return ENOTSUP;  // the kernel shares blocks while it copies
}

int copyFileRange(int source, int target, std::int64_t offset, std::int64_t length) {
  // Kernels before 5.19 give 0 for files whose content is made up as it is read; reading by hand tells those from an
  // end.
  int error = copyInKernel(source, target, offset, length);
  if (isUnsupported(error)) error = copyBySendfile(source, target, offset, length);
  if (isUnsupported(error) || error == EIO) error = copyByHand(source, target, offset, length);
  return error;
}

ssize_t listAttributes(int item, char* names, std::size_t size) { return ::flistxattr(item, names, size); }

ssize_t readAttribute(int item, const char* name, char* value, std::size_t size) {
  return ::fgetxattr(item, name, value, size);
}

int writeAttribute(int item, const char* name, const char* value, std::size_t size) {
  return ::fsetxattr(item, name, value, size, 0) != 0 ? errno : 0;
}

bool isOfContent(std::string_view attribute) {
  // The other namespaces belong to this system (labels, access control).
  return attribute.starts_with("user.") || attribute.starts_with("com.apple.");
}

int exchangeItems(int folder, const char* name, int otherFolder, const char* otherName) {
  return ::syscall(SYS_renameat2, folder, name, otherFolder, otherName, RENAME_EXCHANGE) != 0 ? errno : 0;
}

int renameToFreeName(int folder, const char* name, int newFolder, const char* newName) {
  return ::syscall(SYS_renameat2, folder, name, newFolder, newName, RENAME_NOREPLACE) != 0 ? errno : 0;
}

bool isMissingOperation(int error) { return error == EINVAL || error == ENOSYS || error == ENOTSUP; }

namespace {

/// Extended status without the wait for a network; nothing when it cannot be had.
std::optional<struct statx> extendedStatus(int folder, const char* name, unsigned mask) {
  struct statx status {};
  constexpr int flags = AT_SYMLINK_NOFOLLOW | AT_EMPTY_PATH | AT_NO_AUTOMOUNT;
  if (::statx(folder, name, flags, mask, &status) != 0) return std::nullopt;
  return status;
}

}  // namespace

Result<MountedFileSystem> fileSystemOf(int item) {
  const auto status = extendedStatus(item, "", STATX_BASIC_STATS | STATX_MNT_ID);
  if (!status) return systemError(errno, "");
  return MountedFileSystem{.device = (std::uint64_t{status->stx_dev_major} << 32U) | status->stx_dev_minor,
                           .mount = status->stx_mnt_id};
}

Result<std::uint64_t> availableSpace(int item) {
  struct statvfs status {};
  if (::fstatvfs(item, &status) != 0) return systemError(errno, "");
  return std::uint64_t{status.f_bavail} * status.f_frsize;
}

bool mayShareBlocks(int item, int otherItem) {
  constexpr std::array<long, 4> sharing = {0x58465342, 0x9123683E, 0x7461636F,
                                           0xCA451A4E};  // xfs, btrfs, ocfs2, bcachefs
  struct statfs status {};
  struct stat one {};
  struct stat other {};
  if (::fstatfs(item, &status) != 0 || ::fstat(item, &one) != 0 || ::fstat(otherItem, &other) != 0) return false;
  const auto type = static_cast<long>(status.f_type);
  return one.st_dev == other.st_dev && std::ranges::find(sharing, type) != sharing.end();
}

int flushFileSystem(int item) { return ::syncfs(item) != 0 ? errno : 0; }

bool isImmutable(int folder, const char* name) {
  const auto status = extendedStatus(folder, name, 0);
  return status && (status->stx_attributes & (STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND)) != 0;
}

std::string_view protectionOf(std::string_view /*path*/) { return {}; }
