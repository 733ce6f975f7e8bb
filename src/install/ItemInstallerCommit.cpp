// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <chrono>
#include <map>
#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/ItemInstallerObserver.h"
#include "install/UpgradeRules.h"

namespace {

Status notThere(const std::string& path) { return Error::posix(std::errc::no_such_file_or_directory, path); }

}  // namespace

void ItemInstaller::commit() {
  if (transaction_ == nullptr) return;
  if (!isOneAtATime_) progress_.enter(InstallProgress::Phase::flushing, std::chrono::steady_clock::now());
  listener_.progressed(progress_);
  if (const Status flushed = flush(); !flushed) {
    failAll(staged_, flushed.error());
    return discard();
  }
  if (isInterrupted()) return discard();
  dropUnwanted();
  report_.installedPaths.reserve(staged_.size());
  std::vector<ReportedProblem> failures;
  for (auto group = staged_.cbegin(); group != staged_.cend() && failures.empty();) {
    const auto end =
        std::find_if(group, staged_.cend(), [&](const Member& member) { return member.host != group->host; });
    failures = commitGroup({group, end});
    group = end;
  }
  // Alerts would take their time between two items.
  for (const auto& [path, reason] : failures) fail(path, reason);
  staged_ = {};
}

std::vector<ReportedProblem> ItemInstaller::commitGroup(std::span<const Member> group) {
  std::vector<std::size_t> numbers;
  for (const Member& member : group) numbers.push_back(member.number);
  std::vector<Status> results = transaction_->commit(numbers);
  std::vector<ReportedProblem> failures;
  for (std::size_t i = 0; i < group.size(); ++i) {
    const std::string& target = group[i].item->target;
    const bool isNotSeen = !results[i] && results[i].error().is(std::errc::resource_unavailable_try_again);
    if (isNotSeen) results[i] = appearsInTime(*group[i].item) ? Status() : notThere(target);
    if (!results[i]) {
      failures.push_back({target, results[i].error()});
      continue;
    }
    report_.installedPaths.push_back(target);
    report_.hostsOfPaths.push_back(group[i].host);
  }
  return failures;
}

bool ItemInstaller::appearsInTime(const PlannedItem& item) {
  constexpr int maxChecks = 32;
  for (int checked = 0; checked < maxChecks; ++checked) {
    if (platform_.files.isTaken(item.target)) {
      platform_.log.write(formatted("Took a delay to verify file %@", lastPathComponent(item.source)));
      return true;
    }
    platform_.clock.sleepFor(std::chrono::microseconds(125));
  }
  return false;
}

void ItemInstaller::dropUnwanted() {
  std::map<const PlannedBatch*, bool> copiesNewFilesOf;  // carried over from item to item of a batch
  std::erase_if(staged_, [&](const Member& member) {
    bool& copiesNewFiles = copiesNewFilesOf.try_emplace(member.batch, true).first->second;
    const PlannedItem& item = *member.item;
    if (!member.batch->alwaysInstall && platform_.files.isTaken(item.target)) {
      copiesNewFiles = member.batch->isBundle
                           ? isFileOkToInstallByBundleVersion(platform_, item.source, item.target)
                           : isFileOkToInstallByModificationTime(platform_, item.source, item.target);
    }
    return !copiesNewFiles;
  });
}
