// SPDX-License-Identifier: Apache-2.0

#include "platform/files/Moves.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "platform/files/SystemCalls.h"

namespace {

int moveToFreeName(const Volume::Spot& from, const Volume::Spot& to) {
  const int error = renameToFreeName(from.folder, from.name, to.folder, to.name);
  if (!isMissingOperation(error)) return error;
  // Another process could take the name between the look and the rename. Installers exclude each other.
  struct stat status {};
  if (::fstatat(to.folder, to.name, &status, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  return ::renameat(from.folder, from.name, to.folder, to.name) != 0 ? errno : 0;
}

}  // namespace

Status moveItem(const Volume::Spot& from, const Volume::Spot& to, Elevation::Move how) {
  const int fromFolder = from.folder;
  const int toFolder = to.folder;
  switch (how) {
    case Elevation::Move::toFreeName: return systemStatus(moveToFreeName(from, to), to.resolved);
    case Elevation::Move::exchange:
      return systemStatus(exchangeItems(fromFolder, from.name, toFolder, to.name), to.resolved);
    case Elevation::Move::replace: break;
  }
  return systemStatus(::renameat(fromFolder, from.name, toFolder, to.name) != 0 ? errno : 0, to.resolved);
}

Status moveItem(const Volume::Spot& from, const Volume::Spot& to, Elevation::Move how, Elevation& elevation) {
  Status moved = moveItem(from, to, how);
  const bool mayElevate = isLackOfRights(moved) && elevation.covers(from.resolved) && elevation.covers(to.resolved);
  return mayElevate ? elevation.move(from, to, how) : moved;
}

bool isExchangeMissing(const Status& status) {
  // EXDEV comes from stacked file systems for items of a lower one.
  return !status && status.error().domain == Error::posixDomain &&
         (isMissingOperation(status.error().code) || status.error().code == EXDEV);
}
