#include "platform/rights/HelperWork.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <thread>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/StagedCopy.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TreeCopy.h"
#include "platform/rights/OwnItems.h"
#include "platform/rights/SystemTools.h"

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;
using Place = Volume::Place;

constexpr int folderToRead = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr const char* updateTool = "update-desktop-database";

bool isLackOfRights(const Status& status) {
  return !status &&
         (status.error().is(std::errc::permission_denied) || status.error().is(std::errc::operation_not_permitted));
}

Status systemStatus(int result, std::string_view subject) {
  if (result != 0) return systemError(errno, subject);
  return {};
}

unsigned mostCopyThreads() { return std::clamp(std::thread::hardware_concurrency(), 1U, 8U); }

}  // namespace

HelperWork::HelperWork(const Volume& volume, const Client& client, std::string applicationsFolder)
    : volume_(volume),
      client_(client),
      adminGroup_(groupNumber("admin").value_or(client.account.group)),
      applicationsFolder_(std::move(applicationsFolder)),
      places_(volume, homeOnVolume(volume.root(), client.account), client.account.id) {}

bool HelperWork::canStart(const Operation& operation) const {
  return operation.kind != Operation::Kind::updateApplications || findExecutable(updateTool);
}

int HelperWork::run(const Operation& operation) const {
  if (operation.kind == Operation::Kind::updateApplications) return updateApplications();
  int result = 0;
  for (const std::string& path : operation.paths) {
    const Status done = runOnPath(operation, path);
    if (done) continue;
    std::fprintf(stderr, "%s\n", done.error().description().c_str());
    result = 1;
  }
  return result;
}

Status HelperWork::runOnPath(const Operation& operation, const std::string& path) const {
  const uid_t user = client_.account.id;
  switch (operation.kind) {
    case Operation::Kind::remove: return remove(path);
    case Operation::Kind::makeFolder: return makeFolder(path, operation.mode);
    case Operation::Kind::handOver: return handOver(path);
    case Operation::Kind::touch: return touch(path);
    case Operation::Kind::copy: return copy(operation.source, path);
    case Operation::Kind::setMode:
      return asClient(path, [&](const Place& place) {
        return setModeOfOwnItems(place.folder.get(), place.name, user, operation.mode);
      });
    case Operation::Kind::removeQuarantineMark:
      return asClient(path, [&](const Place& place) {
        return removeQuarantineMarkFromOwnItems(place.folder.get(), place.name, user);
      });
    case Operation::Kind::updateApplications: break;
  }
  return Error::posix(std::errc::not_supported, path);
}

// With whose rights.

Status HelperWork::asClient(const std::string& path, const Work& work) const {
  const AsClient client(client_);
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  return place ? work(*place) : Status(place.error());
}

Status HelperWork::withFewestRights(const std::string& path,
                                    const std::function<Status(const Place&, Rights)>& work) const {
  Status done = asClient(path, [&](const Place& place) { return work(place, Rights::client); });
  if (!isLackOfRights(done)) return done;
  const auto place = volume_.find(path, LastLink::keep, Purpose::change);
  if (!place) return place.error();
  const bool isItem = place->name != ".";
  return isItem && places_.cover(place->resolved) ? work(*place, Rights::helper) : done;
}

// Removing, and handing over.

Status HelperWork::remove(const std::string& path) const {
  const Status removed = withFewestRights(
      path, [](const Place& place, Rights /*rights*/) { return removeTree(place.folder.get(), place.name); });
  return !removed && removed.error().is(std::errc::no_such_file_or_directory) ? Status() : removed;
}

Status HelperWork::handOver(const std::string& path) const {
  return withFewestRights(path, [&](const Place& place, Rights /*rights*/) {
    return handOverOwnItems(place.folder.get(), place.name, client_.account.id, adminGroup_);
  });
}

// Making.

Status HelperWork::makeFolder(const std::string& path, mode_t mode) const {
  const Status made = makeOneFolder(path, mode);
  const std::string parent = deletingLastPathComponent(path);
  const bool isParentMissing = !made && made.error().is(std::errc::no_such_file_or_directory);
  if (!isParentMissing || parent.empty() || parent == path) return made;
  constexpr mode_t usualMode = 0755;
  const Status parentMade = makeFolder(parent, usualMode);
  return parentMade ? makeOneFolder(path, mode) : parentMade;
}

Status HelperWork::makeOneFolder(const std::string& path, mode_t mode) const {
  const auto isThere = [&] {
    const AsClient client(client_);
    const auto place = volume_.find(path, LastLink::follow, Purpose::look);
    struct stat status {};
    return place && ::fstatat(place->folder.get(), place->name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(status.st_mode);
  };
  Status made = withFewestRights(path, [&](const Place& place, Rights rights) {
    const int folder = place.folder.get();
    FileDescriptor opened;
    if (rights == Rights::helper) return makeFolderForClient(folder, place.name, mode, opened);
    if (::mkdirat(folder, place.name.c_str(), 0700) != 0) return Status(systemError(errno, path));
    opened = FileDescriptor(::openat(folder, place.name.c_str(), folderToRead | O_NOFOLLOW));
    return systemStatus(::fchmod(opened.get(), mode), path);
  });
  if (isLackOfRights(made)) {
    // The places themselves, and what holds them, are everybody's: they stay root's.
    const auto place = volume_.find(path, LastLink::keep, Purpose::change);
    if (place && place->name != "." && places_.holdOne(place->resolved)) {
      made = systemStatus(::mkdirat(place->folder.get(), place->name.c_str(), 0755), path);
    }
  }
  return made || isThere() ? Status() : made;
}

Status HelperWork::makeFolderForClient(int folder, const std::string& name, mode_t mode, FileDescriptor& made) const {
  if (::mkdirat(folder, name.c_str(), 0700) != 0) return systemError(errno, name);
  made = FileDescriptor(::openat(folder, name.c_str(), folderToRead | O_NOFOLLOW));
  struct stat status {};
  if (!made || ::fstat(made.get(), &status) != 0) return systemError(errno, name);
  // Whoever may rename in the folder may have put another one in its place. Nothing but an empty one of root's is
  // handed over.
  const auto entries = listFolder(made.get());
  if (status.st_uid != 0 || (status.st_mode & 0777U) != 0700 || !entries || !entries->empty()) {
    return Error::posix(std::errc::operation_not_permitted, name);
  }
  if (::fchown(made.get(), client_.account.id, adminGroup_) != 0) return systemError(errno, name);
  return systemStatus(::fchmod(made.get(), mode), name);
}

Status HelperWork::touch(const std::string& path) const {
  return withFewestRights(path, [&](const Place& place, Rights rights) {
    const int folder = place.folder.get();
    constexpr int toWrite = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    // With the helper's rights only what was not there before; an old file of somebody else's is theirs.
    const int exclusive = rights == Rights::helper ? O_EXCL : 0;
    const FileDescriptor file(::openat(folder, place.name.c_str(), toWrite | exclusive, 0644));
    if (!file) return Status(systemError(errno, path));
    if (rights == Rights::client) return systemStatus(::futimens(file.get(), nullptr), path);
    return systemStatus(::fchown(file.get(), client_.account.id, adminGroup_), path);
  });
}

// Copying.

Status HelperWork::copy(const std::string& source, const std::string& target) const {
  if (!volume_.isInBundle(source)) return Error::posix(std::errc::operation_not_permitted, source);
  return withFewestRights(target, [&](const Place& place, Rights rights) -> Status {
    struct stat status {};
    if (::fstatat(place.folder.get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
      return Error::posix(std::errc::file_exists, target);
    }
    if (rights == Rights::helper) return copyInto(place, source);
    std::atomic<std::uint64_t> bytes = 0;
    auto staged = StagedCopy::make(volume_, source, target, mostCopyThreads(), bytes);
    return staged ? std::move(*staged).putInPlace() : Status(staged.error());
  });
}

/// The client copies, into a folder that is made for it beside the place; all that is done with more rights is to make
/// that folder, and to move the complete copy to its place.
Status HelperWork::copyInto(const Place& place, const std::string& source) const {
  const int folder = place.folder.get();
  for (int attempt = 0; attempt < mostStagedNames; ++attempt) {
    const std::string name = stagedName(place.name, attempt);
    if (!freeStagedName(folder, name)) continue;
    FileDescriptor staging;
    Status copied = makeFolderForClient(folder, name, 0700, staging);
    if (!copied && copied.error().is(std::errc::file_exists)) continue;
    if (copied) {
      static_cast<void>(::flock(staging.get(), LOCK_EX | LOCK_NB));  // tells other installers that it is not left over
      const AsClient client(client_);
      std::atomic<std::uint64_t> bytes = 0;
      FileDescriptor lock;
      const auto from = volume_.find(source, LastLink::keep, Purpose::look);
      copied =
          from ? copyTree({from->folder.get(), from->name, staging.get(), place.name}, mostCopyThreads(), bytes, lock)
               : Status(from.error());
    }
    if (copied) {
      copied = systemStatus(
          ::renameat2(staging.get(), place.name.c_str(), folder, place.name.c_str(), RENAME_NOREPLACE), place.name);
    }
    staging.close();
    ignore(removeTree(folder, name));  // what is left of it goes with the next install
    return copied;
  }
  return Error::posix(std::errc::device_or_resource_busy, place.name);
}

// Another program.

int HelperWork::updateApplications() const {
  becomeClient(client_);
  const auto folder = volume_.realPath(applicationsFolder_, LastLink::follow, Purpose::change);
  const auto tool = findExecutable(updateTool);
  if (!folder || !tool) return 1;
  if (::access(folder->c_str(), F_OK) != 0) return 0;  // nothing was ever registered
  std::string name = updateTool;
  std::string quiet = "-q";
  std::string where = *folder;
  std::string path = "PATH=/usr/bin:/bin:/usr/sbin:/sbin";
  std::string locale = "LC_ALL=C";
  const std::array<char*, 4> arguments = {name.data(), quiet.data(), where.data(), nullptr};
  const std::array<char*, 3> environment = {path.data(), locale.data(), nullptr};
  ::execve(tool->c_str(), arguments.data(), environment.data());
  return 1;
}
