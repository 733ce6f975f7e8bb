// SPDX-License-Identifier: Apache-2.0

#include "platform/files/UserFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"

namespace {

Result<FileDescriptor> open(const Volume::Spot& place) {
  FileDescriptor opened(::openat(place.folder, place.name, folderToRead | O_NOFOLLOW));
  if (!opened) return systemError(errno, place.resolved);
  return opened;
}

Status makeWithOwnRights(const Volume::Spot& place, mode_t mode, const Ownership& ownership, Elevation& elevation) {
  if (::mkdirat(place.folder, place.name, 0700) != 0) return systemError(errno, place.resolved);
  const auto made = openNewFolder(place, ownership.user);
  if (!made) return made.error();
  // Mode before owner: only members of the group can set the set-group-id bit, and chown keeps it.
  if (::fchmod(made->get(), mode) != 0) return systemError(errno, place.resolved);
  const Status given =
      systemStatus(::fchown(made->get(), ownership.user, ownership.group) != 0 ? errno : 0, place.resolved);
  // The folder works with any group.
  if (isLackOfRights(given) && elevation.covers(place.resolved)) ignore(elevation.handOver(place));
  return given || isLackOfRights(given) ? Status() : given;
}

/// The user, and the group that a folder gets there by itself.
Ownership usualOwnership(const Volume::Spot& place, const Ownership& ownership) {
  struct stat status {};
  const bool isRoot = ::geteuid() == 0 && ::fstatat(place.folder, ".", &status, 0) == 0;
  return {ownership.user, isRoot ? status.st_gid : static_cast<gid_t>(-1)};
}

}  // namespace

Result<FileDescriptor> openNewFolder(const Volume::Spot& place, uid_t user) {
  auto made = open(place);
  if (!made) return made;
  struct stat status {};
  if (::fstat(made->get(), &status) != 0) return systemError(errno, place.resolved);
  if (status.st_uid == user) return made;
  const auto entries = listFolder(made->get());
  const bool isNew = (status.st_mode & 0777U) == 0700 && entries && entries->empty();
  if (!isNew) return systemError(EPERM, place.resolved);
  return made;
}

Result<FileDescriptor> makeUserFolder(const Volume::Spot& place, mode_t mode, const Ownership& ownership,
                                      Elevation& elevation) {
  Status made = makeWithOwnRights(place, mode, ownership, elevation);
  if (isLackOfRights(made) && elevation.covers(place.resolved)) made = elevation.makeFolder(place, mode);
  if (!made) return made.error();
  return open(place);
}

Result<FileDescriptor> openOrMakeUserFolders(const Volume& volume, const std::string& path, FolderRole role,
                                             const Ownership& ownership, Elevation& elevation) {
  auto place = volume.find(path, Volume::LastLink::follow, Volume::Purpose::change);
  const std::string parent = deletingLastPathComponent(path);
  const bool isParentMissing = !place && place.error().is(std::errc::no_such_file_or_directory) && parent != path;
  if (isParentMissing && !parent.empty()) {
    const bool isNext = role == FolderRole::holdsItem;
    auto made = openOrMakeUserFolders(volume, parent, isNext ? FolderRole::isAboveThat : FolderRole::leadsThere,
                                      ownership, elevation);
    if (!made) return made.error();
    place = volume.find(path, Volume::LastLink::follow, Volume::Purpose::change);
  }
  if (!place) return place.error();
  auto opened = open(place->spot());
  if (opened || !opened.error().is(std::errc::no_such_file_or_directory)) return opened;
  if (volume.isDanglingLink(path)) return Error::posix(std::errc::file_exists, path);
  auto made = role == FolderRole::leadsThere
                  ? makeUserFolder(place->spot(), 0755, usualOwnership(place->spot(), ownership), elevation)
                  : makeUserFolder(place->spot(), 0775, ownership, elevation);
  if (!made && made.error().is(std::errc::file_exists)) return open(place->spot());
  return made;
}
