// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "foundation/Exception.h"
#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/PosixFileSystem.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TemporaryFile.h"
#include "platform/files/TreeRemoval.h"
#include "platform/files/UserFolder.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

class PosixWritableFile : public WritableFile {
 public:
  explicit PosixWritableFile(FileDescriptor file) : file_(std::move(file)) {}

  void writeData(std::string_view data) override {
    while (!data.empty()) {
      const ssize_t written = ::write(file_.get(), data.data(), data.size());
      if (written < 0 && errno != EINTR) throw Exception(systemError(errno, "").description());
      if (written > 0) data.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::fsync(file_.get()) != 0) throw Exception(systemError(errno, "").description());
  }

 private:
  FileDescriptor file_;
};

class HeldLock : public VolumeLock {
 public:
  explicit HeldLock(std::shared_ptr<FileDescriptor> lock) : lock_(std::move(lock)) {}

 private:
  std::shared_ptr<FileDescriptor> lock_;
};

}  // namespace

int PosixFileSystem::handToUser(int item, int folder) const {
  if (::geteuid() != 0) return 0;
  struct stat status {};
  if (::fstat(folder, &status) != 0) return errno;
  return ::fchown(item, user_.account().id, status.st_gid) != 0 ? errno : 0;
}

Status PosixFileSystem::createFile(const std::string& path, std::string_view content, std::uint32_t permissions) {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  auto file = TemporaryFile::open(place->folder.get(), place->name, path);
  if (!file) return file.error();
  if (Status written = file->write(content); !written) return written;
  if (const int error = handToUser(file->handle(), place->folder.get())) return systemError(error, path);
  if (::fchmod(file->handle(), static_cast<mode_t>(permissions)) != 0) return systemError(errno, path);
  return std::move(*file).putInPlace();
}

Result<std::unique_ptr<WritableFile>> PosixFileSystem::openForWriting(const std::string& path) {
  auto file = openFile(path, O_WRONLY, Purpose::change);
  if (!file) return file.error();
  return std::unique_ptr<WritableFile>(std::make_unique<PosixWritableFile>(std::move(*file)));
}

Status PosixFileSystem::createDirectory(const std::string& path, std::uint32_t permissions) {
  auto place = volume_.find(path, LastLink::keep, Purpose::change);
  const std::string parent = deletingLastPathComponent(path);
  if (!place && place.error().is(std::errc::no_such_file_or_directory) && !parent.empty() && parent != path) {
    constexpr std::uint32_t usualPermissions = 0755;
    if (Status made = createDirectory(parent, usualPermissions); !made) return made;
    place = volume_.find(path, LastLink::keep, Purpose::change);
  }
  if (!place) return place.error();
  const int folder = place->folder.get();
  if (::mkdirat(folder, place->name.c_str(), 0700) != 0) {
    if (errno != EEXIST) return systemError(errno, path);
    // A link to a folder will do. One that leads nowhere stays in the way: the disk that it leads to may be back
    // tomorrow.
    if (!open(path, folderToRead, Purpose::look)) return Error::posix(std::errc::file_exists, path);
    return {};
  }
  const auto made = openNewFolder({folder, place->name.c_str(), path}, user_.account().id);
  if (!made) return made.error();
  if (const int error = handToUser(made->get(), folder)) return systemError(error, path);
  if (::fchmod(made->get(), static_cast<mode_t>(permissions)) != 0) return systemError(errno, path);
  return {};
}

Status PosixFileSystem::setAttributes(const std::string& path, const OwnershipAndMode& attributes) {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  const FileDescriptor item(
      ::openat(place->folder.get(), place->name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!item && errno == ELOOP) return {};
  struct stat status {};
  if (!item || ::fstat(item.get(), &status) != 0) return systemError(errno, path);
  // Root gives nobody what is not theirs: the item may have been exchanged, or be a link to another's file.
  if (::geteuid() == 0 && status.st_uid != user_.account().id) return systemError(EPERM, path);
  if (attributes.permissions && ::fchmod(item.get(), static_cast<mode_t>(*attributes.permissions)) != 0) {
    return systemError(errno, path);
  }
  const auto owner = attributes.owner ? userNumber(*attributes.owner) : std::optional(static_cast<uid_t>(-1));
  const auto group = attributes.group ? groupNumber(*attributes.group) : std::optional(static_cast<gid_t>(-1));
  if (!owner || !group) return Error::posix(std::errc::invalid_argument, path);
  return systemStatus(::fchown(item.get(), *owner, *group) != 0 ? errno : 0, path);
}

Status PosixFileSystem::removeItem(const std::string& path) {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  return place ? removeTree(place->folder.get(), place->name) : Status(place.error());
}

Result<std::unique_ptr<VolumeLock>> PosixFileSystem::tryLock() {
  auto lock = volume_.tryLock();
  if (!lock) return lock.error();
  return std::unique_ptr<VolumeLock>(std::make_unique<HeldLock>(std::move(*lock)));
}
