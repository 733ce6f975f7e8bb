// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/HelperElevation.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files/Moves.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TreeRemoval.h"
#include "platform/files/UserFolder.h"
#include "platform/rights/OwnItems.h"

namespace {

Status refuse(const Volume::Spot& place) { return Error::posix(std::errc::operation_not_permitted, place.resolved); }

}  // namespace

bool HelperElevation::covers(const std::string& resolved) const { return places_.reach(resolved); }

Status HelperElevation::makeFolder(const Volume::Spot& place, mode_t mode) {
  const int folder = place.folder;
  const char* const name = place.name;
  const AsHelper helper(client_);
  if (!places_.cover(place.resolved)) {
    // The places and their parents are shared by all users and stay root's.
    if (!places_.holdOne(place.resolved)) return refuse(place);
    return systemStatus(::mkdirat(folder, name, 0755) != 0 ? errno : 0, place.resolved);
  }
  if (::mkdirat(folder, name, 0700) != 0) return systemError(errno, place.resolved);
  const auto made = openNewFolder(place, ownership_.user);
  if (!made) return made.error().is(std::errc::operation_not_permitted) ? refuse(place) : Status(made.error());
  // Mode before owner: afterwards the set-group-id bit could be set only for a group of the caller.
  if (::fchmod(made->get(), mode) != 0) return systemError(errno, place.resolved);
  return systemStatus(::fchown(made->get(), ownership_.user, ownership_.group) != 0 ? errno : 0, place.resolved);
}

Status HelperElevation::move(const Volume::Spot& from, const Volume::Spot& to, Move how) {
  if (!places_.cover(from.resolved) || !places_.cover(to.resolved)) return refuse(to);
  const AsHelper helper(client_);
  return moveItem(from, to, how);
}

Status HelperElevation::remove(const Volume::Spot& place) {
  if (!places_.cover(place.resolved)) return refuse(place);
  const AsHelper helper(client_);
  return removeTree(place.folder, place.name);
}

Status HelperElevation::handOver(const Volume::Spot& place) {
  if (!places_.cover(place.resolved)) return refuse(place);
  const AsHelper helper(client_);
  return handOverOwnItems(place.folder, place.name, ownership_.user, ownership_.group);
}

Status HelperElevation::makeFile(const Volume::Spot& place) {
  if (!places_.cover(place.resolved)) return refuse(place);
  const AsHelper helper(client_);
  // O_EXCL: an existing file keeps its owner.
  constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const FileDescriptor made(::openat(place.folder, place.name, flags, 0644));
  const bool isMade = made && ::fchown(made.get(), ownership_.user, ownership_.group) == 0;
  return systemStatus(isMade ? 0 : errno, place.resolved);
}
