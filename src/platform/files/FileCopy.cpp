// SPDX-License-Identifier: Apache-2.0

#include "platform/files/FileCopy.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/files/SystemCalls.h"

namespace {

/// Whether the file system, or the lack of a right, keeps the attribute from being set, while the content is fine.
bool isTolerable(int error) { return error == EPERM || error == ENOTSUP || error == EINVAL; }

class Attempt {
 public:
  /// Notes the outcome of a call that sets an attribute.
  void attribute(int result) {
    if (result == 0) return;
    int& noted = isTolerable(errno) ? errors.attribute : errors.content;
    if (noted == 0) noted = errno;
  }

  CopyErrors errors;
};

/// Copies the bytes in pieces and counts each when it is written.
int copyRange(int source, int target, off_t offset, off_t end, CopyCount& copied) {
  constexpr off_t piece = off_t{8} << 20U;
  while (offset < end) {
    const off_t length = std::min(piece, end - offset);
    if (const int error = copyFileRange(source, target, offset, length)) return error;
    copied.bytes += static_cast<std::uint64_t>(length);
    offset += length;
  }
  return 0;
}

int copyContent(int source, int target, const struct stat& status, CopyCount& copied) {
  const bool mayHaveHoles = status.st_blocks * 512 < status.st_size;
  if (!mayHaveHoles) return copyRange(source, target, 0, status.st_size, copied);
  off_t offset = 0;
  while (offset < status.st_size) {
    const off_t data = ::lseek(source, offset, SEEK_DATA);
    if (data < 0 && errno == ENXIO) break;                                      // a hole up to the end
    if (data < 0) return copyRange(source, target, 0, status.st_size, copied);  // the file system has no such query
    const off_t hole = ::lseek(source, data, SEEK_HOLE);
    const off_t end = hole < 0 ? status.st_size : hole;
    if (const int error = copyRange(source, target, data, end, copied)) return error;
    offset = end;
  }
  return ::ftruncate(target, status.st_size) != 0 ? errno : 0;
}

std::array<timespec, 2> onlyModified(const struct stat& status) {
  return {timespec{0, UTIME_OMIT}, modificationTime(status)};
}

CopyErrors setAttributes(int target, const struct stat& status, const CopyAttributes& attributes) {
  Attempt attempt;
  if (attributes.ownership) {
    attempt.attribute(::fchown(target, attributes.ownership->user, attributes.ownership->group));
  }
  attempt.attribute(::fchmod(target, attributes.mode));
  attempt.attribute(::futimens(target, onlyModified(status).data()));
  return attempt.errors;
}

}  // namespace

CopyErrors copyAttributes(int source, int target, const CopyAttributes& attributes) {
  struct stat status {};
  if (::fstat(source, &status) != 0) return {errno, 0};
  if (const int error = copyExtendedAttributes(source, target, attributes.losesQuarantine)) return {error, 0};
  return setAttributes(target, status, attributes);
}

CopyErrors copyFile(int source, const struct stat& status, int targetFolder, const std::string& targetName,
                    const CopyAttributes& attributes, CopyCount& copied) {
  const char* const name = targetName.c_str();
  const bool isCloned = cloneFile(source, targetFolder, name, attributes.losesQuarantine) == 0;
  const int flags = isCloned ? O_RDONLY : O_WRONLY | O_CREAT | O_EXCL;
  const FileDescriptor target(::openat(targetFolder, name, flags | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!target) return {errno, 0};
  int error = 0;
  if (isCloned) {
    copied.bytes += static_cast<std::uint64_t>(status.st_size);
  } else {
    error = copyContent(source, target.get(), status, copied);
    if (error == 0) error = copyExtendedAttributes(source, target.get(), attributes.losesQuarantine);
  }
  if (error != 0) return {error, 0};
  ++copied.files;
  return setAttributes(target.get(), status, attributes);
}

CopyErrors copyFile(int sourceFolder, const std::string& name, int targetFolder, const CopyAttributes& attributes,
                    CopyCount& copied) {
  // Not blocking: what was a file when it was listed may be a pipe by now.
  const FileDescriptor source(::openat(sourceFolder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!source || ::fstat(source.get(), &status) != 0) return {errno, 0};
  if (!S_ISREG(status.st_mode)) return {ENOTSUP, 0};
  return copyFile(source.get(), status, targetFolder, name, attributes, copied);
}

CopyErrors copyLink(int sourceFolder, const std::string& sourceName, int targetFolder, const std::string& targetName,
                    const CopyAttributes& attributes) {
  std::array<char, PATH_MAX> to{};
  const ssize_t length = ::readlinkat(sourceFolder, sourceName.c_str(), to.data(), to.size() - 1);
  if (length < 0) return {errno, 0};
  struct stat status {};
  if (::symlinkat(to.data(), targetFolder, targetName.c_str()) != 0) return {errno, 0};
  if (::fstatat(sourceFolder, sourceName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return {errno, 0};
  const char* const name = targetName.c_str();
  Attempt attempt;
  if (attributes.ownership) {
    const auto [user, group] = *attributes.ownership;
    attempt.attribute(::fchownat(targetFolder, name, user, group, AT_SYMLINK_NOFOLLOW));
  }
  attempt.attribute(::utimensat(targetFolder, name, onlyModified(status).data(), AT_SYMLINK_NOFOLLOW));
  return attempt.errors;
}
