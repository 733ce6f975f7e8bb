// SPDX-License-Identifier: Apache-2.0

#include "platform/files/TemporaryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "platform/files/SystemCalls.h"
#include "platform/files/TreeRemoval.h"

namespace {

/// Returns a hidden name of fixed length, however long `name` is.
std::string hiddenNameFor(std::string_view name) {
  std::uint64_t hash = 14695981039346656037U;  // FNV-1a
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
  std::string digits;
  for (unsigned shift = 64; shift > 0; shift -= 4) digits += "0123456789abcdef"[(hash >> (shift - 4)) & 0xFU];
  return ".installing-" + digits;
}

/// Whether the file is a new one of ours, and not a hard link to another file.
bool isOurs(const struct stat& status) {
  return S_ISREG(status.st_mode) && status.st_nlink == 1 && status.st_uid == ::geteuid();
}

bool isNamed(int folder, const std::string& name, const struct stat& status) {
  struct stat named {};
  return ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 && isSameItem(named, status);
}

}  // namespace

TemporaryFile::TemporaryFile(int folder, std::string name, std::string hiddenName, std::string subject,
                             FileDescriptor file)
    : folder_(folder),
      name_(std::move(name)),
      hiddenName_(std::move(hiddenName)),
      subject_(std::move(subject)),
      file_(std::move(file)) {}

TemporaryFile::~TemporaryFile() {
  if (file_) ::unlinkat(folder_, hiddenName_.c_str(), 0);
}

Result<TemporaryFile> TemporaryFile::open(int folder, const std::string& name, const std::string& subject) {
  const std::string hidden = hiddenNameFor(name);
  constexpr int maxAttempts = 10;
  for (int attempt = 0; attempt < maxAttempts; ++attempt) {
    constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    FileDescriptor file(::openat(folder, hidden.c_str(), flags, 0600));
    struct stat status {};
    if (!file && (errno == ELOOP || errno == EISDIR || errno == ENXIO || errno == EACCES)) {
      if (Status removed = removeTree(folder, hidden); !removed) return removed.error();
      continue;
    }
    if (!file || ::fstat(file.get(), &status) != 0) return systemError(errno, subject);
    if (!isOurs(status)) {
      if (Status removed = removeTree(folder, hidden); !removed) return removed.error();
      continue;
    }
    while (::flock(file.get(), LOCK_EX) != 0 && errno == EINTR) {
    }
    // The previous holder of the lock may have renamed the file.
    if (!isNamed(folder, hidden, status)) continue;
    if (::ftruncate(file.get(), 0) != 0) return systemError(errno, subject);
    return TemporaryFile(folder, name, hidden, subject, std::move(file));
  }
  return Error::posix(std::errc::device_or_resource_busy, subject);
}

Status TemporaryFile::write(std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = ::write(file_.get(), content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return systemError(errno, subject_);
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

Status TemporaryFile::putInPlace() && {
  if (::fsync(file_.get()) != 0) return systemError(errno, subject_);
  if (::renameat(folder_, hiddenName_.c_str(), folder_, name_.c_str()) != 0) return systemError(errno, subject_);
  file_.close();
  return {};
}
