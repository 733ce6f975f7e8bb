// SPDX-License-Identifier: Apache-2.0

#include "platform/files/StagedTransaction.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <deque>
#include <future>
#include <system_error>
#include <utility>

#include "foundation/Path.h"
#include "platform/files/FolderListing.h"
#include "platform/files/TreeRemoval.h"

// Staging. The commit is in StagedTransactionCommit.cpp.

namespace {

using LastLink = Volume::LastLink;
using Purpose = Volume::Purpose;

constexpr std::chrono::milliseconds observedEvery(30);
/// Items are prepared in groups, so that copying begins at once and few folders are open at a time.
constexpr std::size_t preparedAtOnce = 16;

}  // namespace

StagedTransaction::StagedTransaction(const Volume& volume, Elevation& elevation, const Ownership& ownership,
                                     CopyPool::Caller caller)
    : volume_(volume), elevation_(elevation), ownership_(ownership), caller_(caller), pool_(caller, copied_) {}

Result<std::unique_ptr<Transaction>> StagedTransaction::begin(const Volume& volume, Elevation& elevation,
                                                              const Ownership& ownership, CopyPool::Caller caller) {
  if (Status recovered = StagingArea::recover(volume, elevation, ownership); !recovered) return recovered.error();
  return std::unique_ptr<Transaction>(new StagedTransaction(volume, elevation, ownership, caller));
}

StagedTransaction::~StagedTransaction() {
  if (unflushed_ == 0) static_cast<void>(removeAreas());  // the next transaction retries
}

Status StagedTransaction::stage(std::span<const TransactionItem> items, TransactionObserver& observer) {
  std::deque<Preparation> ahead;  // of the items from the one whose turn it is
  std::span<const TransactionItem> rest = items;
  const auto prepareSome = [&] {
    std::vector<CopyPool::Request> requests;
    for (const TransactionItem& item : rest.first(std::min(rest.size(), preparedAtOnce))) {
      const std::size_t copy = pool_.size() + requests.size();
      Preparation preparation{prepare(item, requests)};
      if (pool_.size() + requests.size() > copy) preparation.copy = copy;
      ahead.push_back(std::move(preparation));
    }
    rest = rest.subspan(std::min(rest.size(), preparedAtOnce));
    pool_.add(std::move(requests));
  };

  const std::size_t first = items_.size();
  for (std::size_t i = 0; i < items.size(); ++i) {
    // Some items are always ahead of the one that is waited for.
    if (!rest.empty() && ahead.size() <= preparedAtOnce / 2) prepareSome();
    const Preparation preparation = std::move(ahead.front());
    ahead.pop_front();
    observer.willStage(first + i);
    bool mayGoOn = true;
    while (mayGoOn && preparation.copy && !pool_.waitFor(*preparation.copy, observedEvery)) {
      mayGoOn = observer.whileBusy(copied());
    }
    mayGoOn = mayGoOn && observer.didStage(first + i, settle(first + i, preparation)) && observer.whileBusy(copied());
    if (mayGoOn) continue;
    pool_.cancel();
    return Error::posix(std::errc::operation_canceled, "");
  }
  return {};
}

Status StagedTransaction::prepare(const TransactionItem& asked, std::vector<CopyPool::Request>& requests) {
  items_.push_back({.name = lastPathComponent(asked.target),
                    .source = std::hash<std::string_view>()(asked.source),
                    .isRemoval = asked.source.empty()});
  Item& item = items_.back();
  const bool isName = !item.name.empty() && item.name != "/" && item.name != "." && item.name != "..";
  if (!isName || item.name == StagingArea::folderName) return Error::posix(std::errc::invalid_argument, asked.target);
  const auto folder = folderFor(asked, item);
  if (!folder) return folder.error();
  item.folder = *folder;
  if (item.sameAs) return {};
  if (Status removable = checkOldItem(item); !removable || item.isRemoval) return removable;
  const auto from = sourceFolder(deletingLastPathComponent(asked.source));
  if (!from) return from.error();
  const auto to = stagedFolder(item.folder);
  if (!to) return to.error();
  CopyAttributes attributes{.mode = 0775, .losesQuarantine = asked.losesQuarantine};
  if (!folders_[item.folder].inheritsOwnership) attributes.ownership = ownership_;
  requests.push_back({*from, lastPathComponent(asked.source), *to, item.name, attributes});
  return {};
}

/// A second item with the same target is staged in a folder of its own, unless it is the same as the first.
Result<std::size_t> StagedTransaction::folderFor(const TransactionItem& asked, Item& item) {
  const std::string target = deletingLastPathComponent(asked.target);
  const auto known = folderOfTarget_.find(target);
  if (known != folderOfTarget_.end()) {
    const auto [same, isNew] = folders_[known->second].itemOfName.emplace(item.name, items_.size() - 1);
    if (isNew) return known->second;
    if (items_[same->second].source == item.source) {
      item.sameAs = same->second;
      return known->second;
    }
  }
  auto made = makeFolder(target);
  if (made) folders_[*made].itemOfName.emplace(item.name, items_.size() - 1);
  return made;
}

Result<std::size_t> StagedTransaction::makeFolder(const std::string& target) {
  const auto found =
      findTargetFolder(volume_, target, [this](const std::string& path) { return elevation_.covers(path); });
  if (!found) return found.error();
  const auto area = areaFor(*found);
  if (!area) return area.error();
  auto made = areas_[*area].createFolder(folders_.size(), target, elevation_, ownership_);
  if (!made) return made.error();
  staged_ = {folders_.size(), std::make_shared<FileDescriptor>(std::move(made->staged))};
  folders_.push_back(
      {.target = target, .area = *area, .isMissing = found->isMissing, .inheritsOwnership = made->inheritsOwnership});
  folderOfTarget_[target] = folders_.size() - 1;
  return folders_.size() - 1;
}

Result<std::size_t> StagedTransaction::areaFor(const TargetFolder& found) {
  const auto add = [&](const std::string& parent) -> Status {
    auto area = StagingArea::create(volume_, parent, elevation_, ownership_);
    if (!area) return area.error();
    const auto fileSystem = fileSystemOf(area->handle());
    if (!fileSystem) return fileSystem.error();
    fileSystems_.push_back(*fileSystem);
    areas_.push_back(std::move(*area));
    return {};
  };
  if (areas_.empty()) {
    if (Status added = add(StagingArea::mainParent); !added) return added.error();
  }
  const auto wanted = fileSystemOf(found.handle.get());
  if (!wanted) return wanted.error();
  const auto known = std::ranges::find(fileSystems_, *wanted);
  if (known != fileSystems_.end()) return static_cast<std::size_t>(known - fileSystems_.begin());
  // Record the area before creating it: an unknown area would never be removed.
  const std::string path = joinPath(found.place.resolved, StagingArea::folderName);
  if (Status noted = areas_.front().noteArea(path); !noted) return noted.error();
  if (Status added = add(found.place.resolved); !added) return added.error();
  return areas_.size() - 1;
}

/// Fails when there is an old item that cannot be removed, or none where one is to be removed.
Status StagedTransaction::checkOldItem(const Item& item) {
  const Folder& folder = folders_[item.folder];
  const std::string path = joinPath(folder.target, item.name);
  int error = ENOENT;
  if (!folder.isMissing) {
    const auto target = targetFolder(item.folder, /*makes=*/false);
    if (!target) return target.error();
    struct stat status {};
    const bool isThere = ::fstatat((*target)->get(), item.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    error = isThere ? 0 : errno;
  }
  const bool isCovered = elevation_.covers(joinPath(target_.path, item.name));
  if (error == EACCES && isCovered) return {};  // only the elevated rights can look
  if (error == ENOENT && !item.isRemoval) return {};
  if (error != 0) return systemError(error, path);
  return checkRemovable(target_.folder->get(), item.name, !isCovered);
}

Result<std::shared_ptr<FileDescriptor>> StagedTransaction::sourceFolder(const std::string& path) {
  if (source_.folder != nullptr && source_.number == path) return source_.folder;
  const auto place = volume_.find(path, LastLink::follow, Purpose::look);
  if (!place) return place.error();
  FileDescriptor folder(::openat(place->folder.get(), place->name.c_str(), folderToRead));
  if (!folder) return systemError(errno, path);
  source_ = {path, std::make_shared<FileDescriptor>(std::move(folder))};
  return source_.folder;
}

Result<std::shared_ptr<FileDescriptor>> StagedTransaction::stagedFolder(std::size_t number) {
  const Folder& folder = folders_[number];
  if (staged_.folder != nullptr && staged_.number == number) return staged_.folder;
  FileDescriptor opened = areas_[folder.area].openFolder(number);
  if (!opened) return systemError(errno, folder.target);
  staged_ = {number, std::make_shared<FileDescriptor>(std::move(opened))};
  return staged_.folder;
}

ItemResult StagedTransaction::settle(std::size_t number, const Preparation& preparation) {
  Item& item = items_[number];
  ItemResult result{preparation.status};
  if (!result.status) return result;
  Folder& folder = folders_[item.folder];
  if (item.sameAs) {
    item.state = items_[*item.sameAs].state;
    if (item.state == Item::State::staged) return result;
    return {Error::posix(std::errc::operation_canceled, joinPath(folder.target, item.name))};
  }
  if (preparation.copy) {
    auto [content, attributes] = pool_.takeOutcome(*preparation.copy);
    result = {std::move(content), std::move(attributes)};
    if (!result.status) {
      const auto staged = stagedFolder(item.folder);
      folder.isClean = staged && removeTree((*staged)->get(), item.name) && folder.isClean;
    }
  }
  if (!result.status) return result;
  item.state = Item::State::staged;
  if (!item.isRemoval) ++folder.staged;
  return result;
}

void StagedTransaction::attend(const std::function<void()>& work, TransactionObserver& observer) {
  if (caller_ == CopyPool::Caller::helps) return work();
  std::future<void> done;
  try {
    done = std::async(std::launch::async, work);
  } catch (const std::system_error&) {
    return work();  // no thread available
  }
  while (done.wait_for(observedEvery) == std::future_status::timeout) static_cast<void>(observer.whileBusy(copied()));
  done.get();
}

Status StagedTransaction::flush(TransactionObserver& observer) {
  Status flushed;
  const auto flushAll = [&] {
    for (const StagingArea& area : areas_) {
      const int error = flushFileSystem(area.handle());
      if (error != 0 && flushed) flushed = systemError(error, area.place().resolved);
    }
  };
  attend(flushAll, observer);
  const bool isCommitted =
      std::ranges::any_of(items_, [](const Item& item) { return item.state == Item::State::committed; });
  unflushed_ = !flushed && isCommitted ? flushed.error().code : 0;
  return flushed;
}
