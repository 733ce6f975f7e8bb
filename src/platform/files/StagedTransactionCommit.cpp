// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/Moves.h"
#include "platform/files/StagedTransaction.h"
#include "platform/files/SystemCalls.h"
#include "platform/files/TreeRemoval.h"
#include "platform/files/UserFolder.h"

namespace {

using Kind = StagingArea::Kind;
using Move = Elevation::Move;

/// The same with what a person can do about it.
Status explained(const Status& status, const std::string& path) {
  if (status || !status.error().is(std::errc::operation_not_permitted)) return status;
  const std::string_view protection = protectionOf(path);
  if (protection.empty()) return status;
  Error error = status.error();
  error.userInfo[std::string(Error::localizedDescriptionKey)] = protection;
  return error;
}

}  // namespace

std::vector<Status> StagedTransaction::commit(std::span<const std::size_t> items) {
  const std::vector<std::size_t> listed = countListed(items);
  std::vector<Status> results;
  results.reserve(items.size());
  for (const std::size_t number : items) {
    if (number >= items_.size()) {
      results.push_back(Error::posix(std::errc::invalid_argument, ""));
      continue;
    }
    Item& item = items_[number];
    Status committed = commitItem(item, listed);
    const bool hasFolder = !committed && item.folder < folders_.size();
    results.push_back(hasFolder ? explained(committed, joinPath(folders_[item.folder].target, item.name))
                                : std::move(committed));
  }
  return results;
}

/// Counts the listed copies of each folder.
std::vector<std::size_t> StagedTransaction::countListed(std::span<const std::size_t> items) const {
  std::vector<std::size_t> listed(folders_.size());
  for (const std::size_t number : items) {
    if (number >= items_.size()) continue;
    const Item& item = items_[number];
    const bool isCopy = item.state == Item::State::staged && !item.isRemoval && !item.sameAs;
    if (isCopy) ++listed[item.folder];
  }
  return listed;
}

Status StagedTransaction::commitItem(Item& item, const std::vector<std::size_t>& listed) {
  const bool isReady =
      item.sameAs ? items_[*item.sameAs].state == Item::State::committed : item.state == Item::State::staged;
  if (!isReady) return Error::posix(std::errc::operation_canceled, item.name);
  Folder& folder = folders_[item.folder];
  const bool isWhole = folder.isMissing && folder.isClean && listed[item.folder] == folder.staged;
  if (isWhole) moveWholeFolder(item.folder);
  const auto opened = targetFolder(item.folder, /*makes=*/true);
  if (!opened) return opened.error();
  const Volume::Spot target{(*opened)->get(), item.name.c_str(), joinPath(target_.path, item.name)};
  Status placed;
  if (item.isRemoval) {
    placed = moveOld(item, target, /*isSetAside=*/true);
  } else if (!folder.isMoved && !item.sameAs) {
    const auto staged = stagedFolder(item.folder);
    if (!staged) return staged.error();
    placed = place(item, areas_[folder.area].spotIn(item.folder, Kind::staged, **staged, item.name), target);
  }
  if (placed) placed = verify(item, target);
  if (placed) item.state = Item::State::committed;
  return placed;
}

/// Moves the items of a missing target folder in one step, with the folder itself. When that fails, they are moved one
/// by one.
void StagedTransaction::moveWholeFolder(std::size_t number) {
  Folder& folder = folders_[number];
  const auto staged = stagedFolder(number);
  const auto parent = openOrMakeUserFolders(volume_, deletingLastPathComponent(folder.target), FolderRole::isAboveThat,
                                            ownership_, elevation_);
  const auto target = volume_.find(folder.target, Volume::LastLink::keep, Volume::Purpose::change);
  if (!staged || !parent || !target || ::fchmod((*staged)->get(), 0775) != 0) return;
  const Volume::Place from = areas_[folder.area].placeOfFolder(number);
  folder.isMoved = static_cast<bool>(moveItem(from.spot(), target->spot(), Move::toFreeName, elevation_));
  folder.isMissing = !folder.isMoved;
}

Result<const FileDescriptor*> StagedTransaction::targetFolder(std::size_t number, bool makes) {
  if (target_.folder != nullptr && target_.number == number) return target_.folder.get();
  Folder& folder = folders_[number];
  if (makes && folder.isMissing) {
    if (auto made = openOrMakeUserFolders(volume_, folder.target, FolderRole::holdsItem, ownership_, elevation_); !made)
      return made.error();
    folder.isMissing = false;
  }
  const auto place = volume_.find(folder.target, Volume::LastLink::follow, Volume::Purpose::change);
  if (!place) return place.error();
  FileDescriptor opened = openFolderHandle(place->folder.get(), place->name.c_str(), /*followLink=*/false);
  if (!opened) return systemError(errno, folder.target);
  target_ = {number, std::make_shared<FileDescriptor>(std::move(opened)), place->resolved};
  return target_.folder.get();
}

Status StagedTransaction::place(const Item& item, const Volume::Spot& staged, const Volume::Spot& target) {
  struct stat status {};
  const bool isTaken = ::fstatat(target.folder, target.name, &status, AT_SYMLINK_NOFOLLOW) == 0;
  Status placed;
  if (!isTaken) {
    placed = moveItem(staged, target, Move::toFreeName, elevation_);
    // Only the elevated rights could see the old item.
    if (placed || !placed.error().is(std::errc::file_exists)) return placed;
  }
  placed = moveItem(staged, target, Move::exchange, elevation_);
  return isExchangeMissing(placed) ? placeInTwoSteps(item, staged, target) : placed;
}

Status StagedTransaction::placeInTwoSteps(const Item& item, const Volume::Spot& staged, const Volume::Spot& target) {
  if (Status aside = moveOld(item, target, /*isSetAside=*/true); !aside) return aside;
  Status placed = moveItem(staged, target, Move::toFreeName, elevation_);
  if (placed) return {};
  const Status back = moveOld(item, target, /*isSetAside=*/false);
  return back ? placed : back;  // the next transaction retries
}

/// Sets the old item aside, or moves it back.
Status StagedTransaction::moveOld(const Item& item, const Volume::Spot& target, bool isSetAside) {
  const StagingArea& area = areas_[folders_[item.folder].area];
  const auto old = area.openOldFolder(item.folder);
  if (!old) return old.error();
  const Volume::Spot aside = area.spotIn(item.folder, Kind::old, *old, item.name);
  return isSetAside ? moveItem(target, aside, Move::toFreeName, elevation_)
                    : moveItem(aside, target, Move::toFreeName, elevation_);
}

Status StagedTransaction::verify(const Item& item, const Volume::Spot& target) const {
  struct stat status {};
  const bool isThere = ::fstatat(target.folder, target.name, &status, AT_SYMLINK_NOFOLLOW) == 0;
  const int error = isThere ? 0 : errno;
  if (error == EACCES) return {};  // only the elevated rights can look
  const std::string path = joinPath(folders_[item.folder].target, item.name);
  if (item.isRemoval) return systemStatus(isThere ? EEXIST : error == ENOENT ? 0 : error, path);
  return systemStatus(error == ENOENT ? EAGAIN : error, path);
}

std::vector<Error> StagedTransaction::finish(TransactionObserver& observer) {
  std::vector<Error> left;
  if (unflushed_ != 0) {
    for (const StagingArea& area : areas_) left.push_back(systemError(unflushed_, area.place().resolved));
    forgetAreas();
    return left;
  }
  attend([&] { left = removeAreas(); }, observer);
  return left;
}

std::vector<Error> StagedTransaction::removeAreas() {
  pool_.cancel();
  source_ = {};
  staged_ = target_ = {};
  std::vector<Error> left;
  // The main area last: it lists the others.
  for (auto area = areas_.rbegin(); area != areas_.rend(); ++area) {
    Status removed = area->markDone();
    if (const Status attempted = area->remove(elevation_); !attempted) removed = attempted;
    if (!removed) left.push_back(removed.error());
  }
  forgetAreas();
  return left;
}

void StagedTransaction::forgetAreas() {
  areas_.clear();
  unflushed_ = 0;
  fileSystems_.clear();
  folders_.clear();
  folderOfTarget_.clear();
  for (Item& item : items_) {
    if (item.state == Item::State::staged) item.state = Item::State::failed;
  }
}
