// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include "foundation/Path.h"
#include "install/InstallPlanner.h"

// What a preview wants to know, and the needs of the whole.

namespace {

std::string versionOf(const Platform& platform, const std::string& path) {
  const auto bundle = platform.bundles.bundleAtPath(path);
  return bundle == nullptr ? std::string() : bundle->infoValue("CFBundleVersion").text();
}

bool hasFailed(const PlannedGroup& group) {
  const auto isObstructed = [](const PlannedItem& item) { return item.keptBecause == KeptBecause::obstacle; };
  return !group.unreadable.empty() || std::ranges::any_of(group.batches, [&](const PlannedBatch& batch) {
    return std::ranges::any_of(batch.items, isObstructed);
  });
}

}  // namespace

void InstallPlanner::addDetails(PlannedItem& item, const std::string& folder) {
  ItemDetails details = item.details == nullptr ? ItemDetails() : *item.details;
  if (item.kind == ItemKind::bundle) {
    details.offeredVersion = versionOf(platform_, item.source);
    if (item.fate != Fate::added) details.presentVersion = versionOf(platform_, item.target);
  }
  if (item.fate != Fate::kept) {
    if (!details.obstacle) details.obstacle = knownFolder(folder).obstacle;
    if (!details.obstacle && item.fate == Fate::replaced) {
      const Status removable = platform_.files.checkReplaceable(item.target);
      if (!removable) details.obstacle = removable.error();
    }
    if (details.obstacle) {
      item.fate = Fate::kept;
      item.keptBecause = KeptBecause::obstacle;
    }
  }
  item.details = std::make_shared<const ItemDetails>(std::move(details));
}

void InstallPlanner::stopAfterFailures(std::vector<PlannedGroup>& groups) const {
  const auto failed = std::ranges::find_if(groups, hasFailed);
  if (failed == groups.end()) return;
  for (auto group = failed + 1; group != groups.end(); ++group) {
    for (PlannedBatch& batch : group->batches) {
      for (PlannedItem& item : batch.items) {
        item.fate = Fate::kept;
        item.keptBecause = KeptBecause::earlierFailure;
      }
    }
  }
}

std::vector<SpaceNeed> InstallPlanner::spaceFor(const std::vector<PlannedGroup>& groups) const {
  std::map<std::uint64_t, SpaceNeed> needs;                // by file system
  std::map<std::string, std::optional<DiskSpace>> spaces;  // by folder
  std::unordered_set<std::size_t> targets;                 // hashes
  for (const PlannedGroup& group : groups) {
    for (const PlannedBatch& batch : group.batches) {
      if (batch.items.empty()) continue;
      const std::string& first = batch.items.front().target;
      const auto [space, isNew] = spaces.try_emplace(deletingLastPathComponent(first));
      if (isNew) {
        const auto found = platform_.files.spaceFor(first);
        if (found) space->second = *found;
      }
      if (!space->second) continue;  // nothing can be put there
      for (const PlannedItem& item : batch.items) {
        // A second copy of the same item to the same place is not staged again.
        if (!item.isAttempted() || !targets.insert(std::hash<std::string>()(item.target)).second) continue;
        SpaceNeed& need = needs[space->second->fileSystem];
        if (need.path.empty()) {
          need.path = item.target;
          need.available = space->second->available;
          need.mayShareBlocks = platform_.files.mayShareBlocks(item.source, item.target);
        }
        need.required += item.size.allocated;
        need.largest = std::max(need.largest, item.size.allocated);
      }
    }
  }
  std::vector<SpaceNeed> list;
  for (auto& [fileSystem, need] : needs) list.push_back(std::move(need));
  return list;
}

InstallPlan InstallPlanner::finish(HostList hosts, std::vector<PlannedGroup> groups) {
  if (options_.isDetailed) stopAfterFailures(groups);
  // Several hosts may take the same part of the payload.
  std::unordered_set<std::string> paths;
  std::erase_if(skipped_, [&](const SkippedEntry& entry) { return !paths.insert(entry.path).second; });
  std::vector<SpaceNeed> space = spaceFor(groups);
  return {std::move(hosts), std::move(groups), std::exchange(skipped_, {}), std::move(space)};
}
