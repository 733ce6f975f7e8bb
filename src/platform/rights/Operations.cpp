// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/Operations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/files/Moves.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TreeRemoval.h"
#include "platform/files/UserFolder.h"
#include "platform/processes/Executables.h"
#include "platform/processes/UserProcess.h"
#include "platform/rights/OwnItems.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

}  // namespace

Operations::Operations(const Volume& volume, LocalElevation& elevation, const UserAccount& user,
                       std::string applicationsFolder)
    : volume_(volume),
      elevation_(elevation),
      user_(user),
      ownership_{user.id, groupNumber("admin").value_or(user.group)},
      applicationsFolder_(std::move(applicationsFolder)) {}

Status Operations::run(const Operation& operation) const {
  if (operation.kind == Operation::Kind::updateApplications) return updateApplications();
  Status result;
  for (const std::string& path : operation.paths) {
    Status done = runOnPath(operation, path);
    if (result && !done) result = std::move(done);
  }
  return result;
}

Status Operations::runOnPath(const Operation& operation, const std::string& path) const {
  const auto ownItems = [&](const auto& change) {
    const auto place = volume_.find(path, LastLink::keep, Purpose::change);
    return place ? change(place->folder.get(), place->name) : Status(place.error());
  };
  switch (operation.kind) {
    case Operation::Kind::remove: return remove(path);
    case Operation::Kind::makeFolders: {
      const auto made = openOrMakeUserFolders(volume_, path, FolderRole::isAboveThat, ownership_, elevation_);
      return made ? Status() : Status(made.error());
    }
    case Operation::Kind::handOver:
      return withFewestRights(
          path,
          [&](const Volume::Spot& place) {
            return handOverOwnItems(place.folder, place.name, ownership_.user, ownership_.group);
          },
          [&](const Volume::Spot& place) { return elevation_.handOver(place); });
    case Operation::Kind::setMode:
      return ownItems([&](int folder, const std::string& name) {
        return setModeOfOwnItems(folder, name, ownership_.user, operation.mode);
      });
    case Operation::Kind::makeFile: return makeFile(path);
    case Operation::Kind::replace: return replace(operation.source, path);
    case Operation::Kind::removeQuarantineMark:
      return ownItems([&](int folder, const std::string& name) {
        return removeQuarantineMarkFromOwnItems(folder, name, ownership_.user);
      });
    case Operation::Kind::updateApplications: break;
  }
  return Error::posix(std::errc::not_supported, path);
}

Status Operations::withFewestRights(const std::string& path, const Work& own, const Work& elevated) const {
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  Status done = own(place->spot());
  const bool isItem = place->name != ".";
  return isLackOfRights(done) && isItem && elevation_.covers(place->resolved) ? elevated(place->spot()) : done;
}

Status Operations::remove(const std::string& path) const {
  const Status removed = withFewestRights(
      path, [](const Volume::Spot& place) { return removeTree(place.folder, place.name); },
      [&](const Volume::Spot& place) { return elevation_.remove(place); });
  return !removed && removed.error().is(std::errc::no_such_file_or_directory) ? Status() : removed;
}

Status Operations::makeFile(const std::string& path) const {
  const auto make = [&](const Volume::Spot& place) {
    constexpr int flags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const FileDescriptor made(::openat(place.folder, place.name, flags | O_CREAT | O_EXCL, 0644));
    if (made) {
      const bool isHandedOver = ::geteuid() != 0 || ::fchown(made.get(), ownership_.user, ownership_.group) == 0;
      return systemStatus(isHandedOver ? 0 : errno, path);
    }
    if (errno != EEXIST) return Status(systemError(errno, path));
    const FileDescriptor there(::openat(place.folder, place.name, flags));
    return systemStatus(there && ::futimens(there.get(), nullptr) == 0 ? 0 : errno, path);
  };
  return withFewestRights(path, make, [&](const Volume::Spot& place) { return elevation_.makeFile(place); });
}

Status Operations::replace(const std::string& from, const std::string& path) const {
  const auto source = volume_.find(from, LastLink::keep, Purpose::change);
  if (!source) return source.error();
  const auto target = volume_.find(path, LastLink::keep, Purpose::change);
  if (!target) return target.error();
  return moveItem(source->spot(), target->spot(), Elevation::Move::replace, elevation_);
}

Status Operations::updateApplications() const {
  constexpr const char* tool = "update-desktop-database";
  const auto folder = volume_.realPath(applicationsFolder_, LastLink::follow, Purpose::change);
  if (!folder) return folder.error();
  if (::access(folder->c_str(), F_OK) != 0) return {};  // nothing was ever registered
  const auto program = findExecutable(tool);
  if (!program) return systemError(ENOENT, tool);
  // The database is the user's: root's own would be in their way.
  return startAsUser(user_, *program, {"-q", *folder});
}
