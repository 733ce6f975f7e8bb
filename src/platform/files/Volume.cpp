// SPDX-License-Identifier: Apache-2.0

#include "platform/files/Volume.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"

namespace {

constexpr int maxLinks = 40;

/// Pushes the path's components so that the first is on top.
void pushComponents(std::vector<std::string>& pending, std::string_view path) {
  const std::vector<std::string_view> components = split(path, '/');
  for (auto component = components.rbegin(); component != components.rend(); ++component) {
    if (!component->empty() && *component != ".") pending.emplace_back(*component);
  }
}

}  // namespace

/// A path being followed: the folders from the root to where it has come, each open, with their names.
struct Volume::Walk {
  std::vector<FileDescriptor> folders = {};  ///< the root first
  std::vector<std::string> names = {};       ///< of all folders but the root, then what does not exist
  std::string last = {};                     ///< last component; empty for the root and for what ".." led back to
  int error = 0;                             ///< why some of names could not be opened, 0 when all could

  [[nodiscard]] int folder() const { return folders.back().get(); }

  void goUp() {
    if (!names.empty()) names.pop_back();
    if (folders.size() > names.size() + 1) folders.pop_back();
    if (folders.size() == names.size() + 1) error = 0;  // the rest exists again
  }

  void goToRoot() {
    names.clear();
    folders.resize(1);
  }
};

std::string Volume::pathOf(const Walk& walk, std::string path) {
  for (const std::string& name : walk.names) path = joinPath(path, name);
  return joinPath(path, walk.last);
}

Volume::Volume(std::string root, std::string bundlePath)
    : Volume(openFolderHandle(AT_FDCWD, root.c_str(), /*followLink=*/true), root, std::move(bundlePath)) {}

Volume::Volume(FileDescriptor rootHandle, std::string root, std::string bundlePath)
    : rootHandle_(std::move(rootHandle)), root_(std::move(root)), bundlePath_(std::move(bundlePath)) {}

bool Volume::isInBundle(const std::string& path) const { return isAtOrBelow(path, bundlePath_); }

Result<Volume::Walk> Volume::walk(const std::string& path, LastLink lastLink, Purpose purpose) const {
  if (!path.starts_with('/')) return Error::posix(std::errc::no_such_file_or_directory, path);
  if (path.find('\0') != std::string::npos) return Error::posix(std::errc::invalid_argument, path);

  Walk walk;
  walk.folders.emplace_back(::fcntl(rootHandle_.get(), F_DUPFD_CLOEXEC, 0));
  if (!walk.folders.back()) return systemError(errno, root_);

  std::vector<std::string> pending;
  pushComponents(pending, path);
  int links = 0;
  while (!pending.empty()) {
    const std::string name = std::move(pending.back());
    pending.pop_back();
    if (name == "..") {
      walk.goUp();
      continue;
    }
    const bool isLast = pending.empty();
    FileDescriptor next;
    std::optional<std::string> link;
    if (walk.error == 0 && !isLast) {
      next = openFolderHandle(walk.folder(), name.c_str(), /*followLink=*/false);
      if (!next) {
        walk.error = errno;
        link = readLink(walk.folder(), name);
      }
    } else if (walk.error == 0 && lastLink == LastLink::follow) {
      link = readLink(walk.folder(), name);
    }
    if (link) {
      if (++links > maxLinks) return Error::posix(std::errc::too_many_symbolic_link_levels, path);
      if (link->starts_with('/')) walk.goToRoot();
      pushComponents(pending, *link);
      walk.error = 0;
    } else if (isLast) {
      walk.last = name;
    } else {
      if (next) walk.folders.push_back(std::move(next));
      walk.names.push_back(name);
    }
  }
  if (purpose == Purpose::change && isInBundle(realPathOf(walk))) {
    return Error::posix(std::errc::read_only_file_system, path);
  }
  return walk;
}

std::string Volume::realPathOf(const Walk& walk) const { return pathOf(walk, root_); }

Result<Volume::Place> Volume::find(const std::string& path, LastLink lastLink, Purpose purpose) const {
  if (isInBundle(path)) {
    if (purpose == Purpose::change) return Error::posix(std::errc::read_only_file_system, path);
    const std::string folder = deletingLastPathComponent(path);
    Place place{openFolderHandle(AT_FDCWD, folder.c_str(), /*followLink=*/true), lastPathComponent(path), path};
    if (!place.folder) return systemError(errno, path);
    return place;
  }
  auto walked = walk(path, lastLink, purpose);
  if (!walked) return walked.error();
  if (walked->error != 0) return systemError(walked->error, path);
  std::string resolved = pathOf(*walked, "/");
  return Place{std::move(walked->folders.back()), walked->last.empty() ? "." : walked->last, std::move(resolved)};
}

Result<std::string> Volume::realPath(const std::string& path, LastLink lastLink, Purpose purpose) const {
  if (isInBundle(path)) {
    if (purpose == Purpose::change) return Error::posix(std::errc::read_only_file_system, path);
    return path;
  }
  const auto walked = walk(path, lastLink, purpose);
  if (!walked) return walked.error();
  return realPathOf(*walked);
}

bool Volume::isDanglingLink(const std::string& path) const {
  const auto itself = find(path, LastLink::keep, Purpose::look);
  if (!itself || !readLink(itself->folder.get(), itself->name)) return false;
  const auto target = find(path, LastLink::follow, Purpose::look);
  struct stat status {};
  return !target || ::fstatat(target->folder.get(), target->name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0;
}

Result<std::shared_ptr<FileDescriptor>> Volume::tryLock() const {
  // Unlock explicitly: the helper holds a copy of the descriptor, so closing this one is not enough.
  const auto unlock = [](FileDescriptor* lock) {
    ::flock(lock->get(), LOCK_UN);
    delete lock;
  };
  std::shared_ptr<FileDescriptor> lock(
      new FileDescriptor(::openat(rootHandle_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), unlock);
  if (!*lock) return systemError(errno, root_);
  const bool isLocked = ::flock(lock->get(), LOCK_EX | LOCK_NB) == 0;
  if (!isLocked && errno == EWOULDBLOCK) return Error::posix(std::errc::device_or_resource_busy, root_);
  if (!isLocked && errno != ENOLCK && errno != ENOTSUP && errno != EINVAL) return systemError(errno, root_);
  lock_ = lock;
  return lock;
}
