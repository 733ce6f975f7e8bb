// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacElevation.h"

#include <fcntl.h>
#include <sys/param.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/SystemCalls.h"

namespace {

Error notPermitted(const Volume::Spot& place) { return systemError(EPERM, place.resolved); }

/// The path of the item on this system at this moment; nothing when its folder is gone.
std::optional<std::string> pathOf(const Volume::Spot& place) {
  std::array<char, MAXPATHLEN> folder{};
  if (::fcntl(place.folder, F_GETPATH, folder.data()) != 0) return std::nullopt;
  return joinPath(folder.data(), place.name);
}

std::optional<struct stat> statusOf(const Volume::Spot& place) {
  struct stat status {};
  if (::fstatat(place.folder, place.name, &status, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
  return status;
}

}  // namespace

Status MacElevation::run(const std::string& tool, const std::vector<std::string>& arguments,
                         const Volume::Spot& place) {
  const LaunchStatus status = run_(tool, arguments);
  if (status == launchSucceeded) return {};
  // Without the means to ask anybody, the own rights are all there are.
  if (status == errAuthorizationToolExecuteFailure) return notPermitted(place);
  return Error{.domain = std::string(authorizationErrorDomain), .code = status};
}

Status MacElevation::makeFolder(const Volume::Spot& place, mode_t mode) {
  if (!covers(place.resolved)) return notPermitted(place);
  if (statusOf(place)) return systemError(EEXIST, place.resolved);
  const auto path = pathOf(place);
  if (!path) return systemError(ENOENT, place.resolved);
  // The places themselves, and what holds them, are everybody's: they stay root's.
  const bool isUsers = places_.cover(place.resolved);
  if (Status made = run("/bin/mkdir", {"-m", isUsers ? "0700" : "0755", *path}, place); !made) return made;
  const auto made = statusOf(place);
  if (!made || !S_ISDIR(made->st_mode) || made->st_uid != 0) return notPermitted(place);
  if (!isUsers) return {};
  const std::string owner = std::to_string(ownership_.user) + ":" + std::to_string(ownership_.group);
  if (Status given = run("/usr/sbin/chown", {"-h", owner, *path}, place); !given) return given;
  const FileDescriptor opened(::openat(place.folder, place.name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  return systemStatus(opened && ::fchmod(opened.get(), mode) == 0 ? 0 : errno, place.resolved);
}

Status MacElevation::move(const Volume::Spot& from, const Volume::Spot& to, Move how) {
  if (how == Move::exchange) return systemError(ENOTSUP, to.resolved);
  if (!places_.cover(from.resolved) || !places_.cover(to.resolved)) return notPermitted(to);
  const auto item = statusOf(from);
  if (!item) return systemError(ENOENT, from.resolved);
  const auto old = statusOf(to);
  if (!old && errno != ENOENT) return notPermitted(to);  // mv could move the item into a folder that nobody sees
  if (old && how == Move::toFreeName) return systemError(EEXIST, to.resolved);
  if (old && S_ISDIR(old->st_mode)) return systemError(EISDIR, to.resolved);  // mv would move the item into it
  const auto source = pathOf(from);
  const auto target = pathOf(to);
  if (!source || !target) return systemError(ENOENT, to.resolved);
  const std::string option = how == Move::toFreeName ? "n" : "f";
  // With -h, which only later systems know, mv follows no link to a folder.
  for (const std::string links : {"-h", "-"}) {
    if (links == "-" && old && S_ISLNK(old->st_mode)) break;
    if (Status moved = run("/bin/mv", {links + option, *source, *target}, to); !moved) return moved;
    if (const auto there = statusOf(to); there && isSameItem(*there, *item)) return {};
  }
  return notPermitted(to);
}

Status MacElevation::remove(const Volume::Spot& place) {
  if (!places_.cover(place.resolved)) return notPermitted(place);
  const auto path = pathOf(place);
  if (!path || !statusOf(place)) return systemError(ENOENT, place.resolved);
  if (Status removed = run("/bin/rm", {"-fR", *path}, place); !removed) return removed;
  return statusOf(place) ? Status(notPermitted(place)) : Status();
}

Status MacElevation::handOver(const Volume::Spot& place) {
  if (!places_.cover(place.resolved)) return notPermitted(place);
  const auto path = pathOf(place);
  if (!path) return systemError(ENOENT, place.resolved);
  std::vector<std::string> paths;
  if (Status listed = addOwnItems(place.folder, place.name, *path, user_.id, paths); !listed) return listed;
  constexpr std::size_t pathsAtOnce = 200;
  const std::string owner = std::to_string(ownership_.user) + ":" + std::to_string(ownership_.group);
  for (std::size_t first = 0; first < paths.size(); first += pathsAtOnce) {
    std::vector<std::string> arguments = {"-h", owner};
    const std::size_t end = std::min(paths.size(), first + pathsAtOnce);
    for (std::size_t i = first; i < end; ++i) arguments.push_back(paths[i]);
    if (Status given = run("/usr/sbin/chown", arguments, place); !given) return given;
  }
  return {};
}

Status MacElevation::addOwnItems(int folder, const std::string& name, const std::string& path, uid_t user,
                                 std::vector<std::string>& paths) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return systemError(errno, path);
  // An item of anybody else is left alone, with what is in it.
  if (status.st_uid != user) return {};
  paths.push_back(path);
  if (!S_ISDIR(status.st_mode)) return {};
  const FileDescriptor inner(::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!inner) return systemError(errno, path);
  const auto entries = listFolder(inner.get());
  if (!entries) return systemError(entries.error().code, path);
  for (const FolderEntry& entry : *entries) {
    if (Status added = addOwnItems(inner.get(), entry.name, joinPath(path, entry.name), user, paths); !added) {
      return added;
    }
  }
  return {};
}
