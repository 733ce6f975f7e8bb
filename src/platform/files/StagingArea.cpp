// SPDX-License-Identifier: Apache-2.0

#include "platform/files/StagingArea.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/Moves.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TreeRemoval.h"
#include "platform/files/UserFolder.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

constexpr std::string_view oldSuffix = ".old";
constexpr std::string_view targetSuffix = ".to";
constexpr std::string_view areaPrefix = "area.";
constexpr const char* doneName = "done";

FileDescriptor duplicate(const FileDescriptor& descriptor) {
  return FileDescriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, 0));
}

bool isThere(int folder, const std::string& name) {
  struct stat status {};
  return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

/// An area that an interrupted installer left.
class LeftArea {
 public:
  LeftArea(const Volume& volume, Elevation& elevation, const Ownership& ownership)
      : volume_(volume), elevation_(elevation), ownership_(ownership) {}

  /// Succeeds when there is no area.
  Status recover(const std::string& path) {
    auto place = volume_.find(path, LastLink::keep, Purpose::change);
    if (!place && place.error().is(std::errc::no_such_file_or_directory)) return {};
    if (!place) return place.error();
    FileDescriptor area(::openat(place->folder.get(), place->name.c_str(), folderToRead | O_NOFOLLOW));
    if (!area && errno == ENOENT) return {};
    if (!area) return systemError(errno, place->resolved);
    if (!isTrusted(area.get(), place->folder.get())) {
      return Error::posix(std::errc::operation_not_permitted, place->resolved);
    }
    const auto entries = listFolder(area.get());
    if (!entries) return systemError(entries.error().code, place->resolved);
    const bool isDone = isThere(area.get(), doneName);
    for (const FolderEntry& entry : *entries) {
      if (entry.name.starts_with(areaPrefix)) {
        if (Status other = recoverOther(area.get(), entry.name); !other) return other;
      } else if (entry.name.ends_with(oldSuffix) && !isDone) {
        if (Status restored = restore(*place, area, entry.name); !restored) return restored;
      }
    }
    Status removed = removeTree(place->folder.get(), place->name);
    if (isLackOfRights(removed) && elevation_.covers(place->resolved)) removed = elevation_.remove(place->spot());
    return removed;
  }

 private:
  /// Whether nobody but root and the user can have planted the area.
  [[nodiscard]] bool isTrusted(int area, int parent) const {
    struct stat itself {};
    struct stat holding {};
    if (::fstat(area, &itself) != 0 || ::fstatat(parent, ".", &holding, 0) != 0) return false;
    const bool isOursOrRoots = itself.st_uid == 0 || itself.st_uid == ownership_.user;
    return isOursOrRoots || (holding.st_uid == 0 && (holding.st_mode & (S_IWGRP | S_IWOTH)) == 0);
  }

  Status recoverOther(int area, const std::string& name) {
    const auto path = readLink(area, name);
    const bool isArea = path && path->starts_with('/') && lastPathComponent(*path) == StagingArea::folderName;
    if (!isArea || depth_ > 0) return {};
    ++depth_;
    Status recovered = recover(*path);
    --depth_;
    return recovered;
  }

  Status restore(const Volume::Place& area, const FileDescriptor& handle, const std::string& oldName) {
    const FileDescriptor old(::openat(handle.get(), oldName.c_str(), folderToRead | O_NOFOLLOW));
    const std::string number = oldName.substr(0, oldName.size() - oldSuffix.size());
    const auto target = readLink(handle.get(), number + std::string(targetSuffix));
    if (!old || !target) return {};
    const auto entries = listFolder(old.get());
    if (!entries) return systemError(entries.error().code, area.resolved);
    for (const FolderEntry& entry : *entries) {
      const auto to = volume_.find(joinPath(*target, entry.name), LastLink::keep, Purpose::change);
      if (!to || isThere(to->folder.get(), to->name)) continue;
      const Volume::Spot from{old.get(), entry.name.c_str(), joinPath({area.resolved, oldName, entry.name})};
      Status moved = mayMove(handle.get(), to->resolved)
                         ? moveItem(from, to->spot(), Elevation::Move::toFreeName, elevation_)
                         : Status(systemError(EPERM, to->resolved));
      if (!moved) return moved;
    }
    return {};
  }

  /// Whether root may move an item there. A user's area must not let root move items where that user could not.
  [[nodiscard]] bool mayMove(int area, const std::string& resolved) const {
    struct stat status {};
    return ::geteuid() != 0 || elevation_.covers(resolved) || (::fstat(area, &status) == 0 && status.st_uid == 0);
  }

  const Volume& volume_;
  Elevation& elevation_;
  const Ownership& ownership_;
  int depth_ = 0;
};

}  // namespace

Status StagingArea::recover(const Volume& volume, Elevation& elevation, const Ownership& ownership) {
  return LeftArea(volume, elevation, ownership).recover(joinPath(mainParent, folderName));
}

Result<StagingArea> StagingArea::create(const Volume& volume, const std::string& parent, Elevation& elevation,
                                        const Ownership& ownership) {
  auto place = volume.find(joinPath(parent, folderName), LastLink::keep, Purpose::change);
  if (!place && place.error().is(std::errc::no_such_file_or_directory)) {
    if (auto made = openOrMakeUserFolders(volume, parent, FolderRole::leadsThere, ownership, elevation); !made)
      return made.error();
    place = volume.find(joinPath(parent, folderName), LastLink::keep, Purpose::change);
  }
  if (!place) return place.error();
  auto handle = makeUserFolder(place->spot(), 0700, ownership, elevation);
  if (!handle) return handle.error();
  return StagingArea(std::move(*place), std::move(*handle));
}

Status StagingArea::noteArea(const std::string& resolvedPath) {
  const std::string name = std::string(areaPrefix) + std::to_string(++otherAreas_);
  return systemStatus(::symlinkat(resolvedPath.c_str(), handle(), name.c_str()) != 0 ? errno : 0, place_.resolved);
}

Result<StagingArea::Folder> StagingArea::createFolder(std::size_t number, const std::string& target,
                                                      Elevation& elevation, const Ownership& ownership) {
  const std::string name = std::to_string(number);
  const std::string note = name + std::string(targetSuffix);
  if (::symlinkat(target.c_str(), handle(), note.c_str()) != 0) return systemError(errno, place_.resolved);
  constexpr mode_t mode = groupPassingBit | 0700;
  const Volume::Place place = placeOfFolder(number);
  auto made = makeUserFolder(place.spot(), mode, ownership, elevation);
  if (!made) return made.error();
  struct stat status {};
  if (::fstat(made->get(), &status) != 0) return systemError(errno, place_.resolved);
  const bool isOurs = status.st_uid == ownership.user && ::geteuid() == ownership.user;
  const bool passesGroupOn = status.st_gid == ownership.group && (status.st_mode & groupPassingBit) == groupPassingBit;
  return Folder{.staged = std::move(*made), .inheritsOwnership = isOurs && passesGroupOn};
}

FileDescriptor StagingArea::openFolder(std::size_t number) const {
  return FileDescriptor(::openat(handle(), std::to_string(number).c_str(), folderToRead | O_NOFOLLOW));
}

Result<FileDescriptor> StagingArea::openOldFolder(std::size_t number) const {
  const std::string name = std::to_string(number) + std::string(oldSuffix);
  if (::mkdirat(handle(), name.c_str(), 0700) != 0 && errno != EEXIST) return systemError(errno, place_.resolved);
  FileDescriptor opened(::openat(handle(), name.c_str(), folderToRead | O_NOFOLLOW));
  if (!opened) return systemError(errno, place_.resolved);
  return opened;
}

Volume::Spot StagingArea::spotIn(std::size_t number, Kind kind, const FileDescriptor& folder,
                                 const std::string& name) const {
  const std::string folderOfNumber = std::to_string(number) + (kind == Kind::old ? std::string(oldSuffix) : "");
  return {folder.get(), name.c_str(), joinPath({place_.resolved, folderOfNumber, name})};
}

Volume::Place StagingArea::placeOfFolder(std::size_t number) const {
  const std::string name = std::to_string(number);
  return {duplicate(handle_), name, joinPath(place_.resolved, name)};
}

Status StagingArea::markDone() {
  const bool isMarked = ::symlinkat(doneName, handle(), doneName) == 0 || errno == EEXIST;
  return systemStatus(isMarked ? 0 : errno, place_.resolved);
}

Status StagingArea::remove(Elevation& elevation) {
  Status removed = removeTree(place_.folder.get(), place_.name);
  if (isLackOfRights(removed) && elevation.covers(place_.resolved)) removed = elevation.remove(place_.spot());
  return removed;
}
