// SPDX-License-Identifier: Apache-2.0

#include "install/InstallPlanner.h"

#include <algorithm>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/LightRoomHostModel.h"
#include "hosts/PhotoshopHostModel.h"
#include "hosts/UnknownHostModel.h"
#include "install/UpgradeRules.h"
#include "payload/InstallerTexts.h"

namespace {

bool holdsLightRoom(const HostList& hosts) {
  return std::ranges::any_of(hosts, [](const std::shared_ptr<HostModel>& host) {
    return dynamic_cast<const LightRoomHostModel*>(host.get()) != nullptr;
  });
}

/// Adds what was found in a part of the payload, but not its items.
void takeOver(PayloadPart& part, PlannedGroup& group, std::vector<SkippedEntry>& skipped) {
  std::ranges::move(part.skipped, std::back_inserter(skipped));
  std::ranges::move(part.unreadable, std::back_inserter(group.unreadable));
}

void setObstacle(PlannedItem& item, const Error& error) {
  item.details = std::make_shared<const ItemDetails>(ItemDetails{.obstacle = error});
}

}  // namespace

InstallPlan InstallPlanner::plan(const HostList& hosts) {
  std::vector<PlannedGroup> groups(1);
  addHostIndependent(groups.front(), hosts);
  for (std::size_t i = 0; i < hosts.size(); ++i) {
    groups.push_back({.host = i});
    addHost(groups.back(), *hosts[i]);
  }
  return finish(hosts, std::move(groups));
}

InstallPlan InstallPlanner::planHostIndependent(const HostList& selectedHosts) {
  std::vector<PlannedGroup> groups(1);
  addHostIndependent(groups.front(), selectedHosts);
  return finish({}, std::move(groups));
}

InstallPlan InstallPlanner::planHost(const std::shared_ptr<HostModel>& host) {
  std::vector<PlannedGroup> groups = {{.host = 0}};
  addHost(groups.front(), *host);
  return finish({host}, std::move(groups));
}

InstallPlan InstallPlanner::planHostFiles(const std::string& from, const std::string& to) {
  std::vector<PlannedGroup> groups(1);
  addHostFiles(groups.front(), from, to);
  return finish({}, std::move(groups));
}

InstallPlan InstallPlanner::planSourceFiles(const std::vector<std::string>& sources, const std::string& toPath,
                                            bool isBundle, bool alwaysInstall) {
  PlannedBatch batch{.isBundle = isBundle, .alwaysInstall = alwaysInstall};
  for (const std::string& source : sources) {
    const auto attributes = platform_.files.attributesOfItem(source);
    const WalkedItem item{.path = source,
                          .type = attributes ? attributes->type : ItemType::other,
                          .isPackage = isBundle,
                          .size = attributes ? attributes->size : 0};
    batch.items.push_back(planItem(item, joinPath(toPath, lastPathComponent(source))));
    if (!attributes) setObstacle(batch.items.back(), attributes.error());
  }
  decideFates(batch, toPath);
  return finish({}, {{.batches = {std::move(batch)}}});
}

void InstallPlanner::addHostIndependent(PlannedGroup& group, const HostList& selectedHosts) {
  const std::string mirror = payload_.hostIndependentFolder();
  PayloadPart part = payload_.packages(options_.hasPage && holdsLightRoom(selectedHosts));
  for (const WalkedItem& package : part.items) {
    const std::string target = replacingOccurrences(package.path, mirror, "");
    PlannedBatch batch{.isBundle = true, .alwaysInstall = true};
    batch.items.push_back(planItem(package, target));
    batch.items.front().isRegistered = pathExtension(package.path) != "lrplugin";
    decideFates(batch, deletingLastPathComponent(target));
    group.batches.push_back(std::move(batch));
  }
  for (const ProductFolder& folder : payload_.productFolders(part)) {
    const std::string target = replacingOccurrences(folder.path, mirror, "");
    PlannedBatch batch{.alwaysInstall = true};
    batch.items.reserve(folder.items.size());
    for (const WalkedItem& item : folder.items) {
      batch.items.push_back(planItem(item, joinPath(target, lastPathComponent(item.path))));
    }
    decideFates(batch, target);
    group.batches.push_back(std::move(batch));
  }
  takeOver(part, group, skipped_);
}

void InstallPlanner::addHost(PlannedGroup& group, const HostModel& host) {
  if (const auto* photoshop = dynamic_cast<const PhotoshopHostModel*>(&host)) {
    addHostFiles(group, payload_.folder("PHOTOSHOP"), photoshop->appPath());
    addHostFiles(group, payload_.folder("PHOTOSHOP_PLUGINS"), photoshop->plugInPath());
  } else if (dynamic_cast<const LightRoomHostModel*>(&host) != nullptr) {
    addHostFiles(group, payload_.folder("LIGHTROOM"),
                 joinPath({platform_.folders.userApplicationSupport(), "Adobe", "Lightroom"}));
  } else if (const auto* folder = dynamic_cast<const UnknownHostModel*>(&host)) {
    const bool isWanted = folder->shouldInstallPlugIns() && !folder->plugInPath().empty();
    if (isWanted) addHostFiles(group, payload_.folder("PHOTOSHOP_PLUGINS"), folder->plugInPath());
  }
}

void InstallPlanner::addHostFiles(PlannedGroup& group, const std::string& from, const std::string& to) {
  PayloadPart part = payload_.filesBelow(from);
  group.batches.reserve(group.batches.size() + part.items.size());
  for (const WalkedItem& item : part.items) {
    const std::string target = joinPath({replacingOccurrences(item.path, from, to)});
    PlannedBatch batch{.isBundle = item.isPackage, .alwaysInstall = true};
    batch.items.push_back(planItem(item, target));
    decideFates(batch, deletingLastPathComponent(target));
    group.batches.push_back(std::move(batch));
  }
  takeOver(part, group, skipped_);
}

PlannedItem InstallPlanner::planItem(const WalkedItem& source, const std::string& target) const {
  PlannedItem item{.source = source.path, .target = target};
  if (source.type == ItemType::regularFile && !source.isPackage) {
    constexpr std::uint64_t block = 4096;
    item.size = {.bytes = source.size, .allocated = (source.size + 2 * block - 1) / block * block, .files = 1};
    return item;
  }
  item.kind = source.isPackage                  ? ItemKind::bundle
              : source.type == ItemType::folder ? ItemKind::folder
                                                : ItemKind::other;
  const auto size = platform_.files.sizeOfItem(source.path);
  if (size) item.size = *size;
  if (!size) setObstacle(item, size.error());
  return item;
}

/// Follows the batch as the install will: an item that is kept keeps missing ones behind it from being added.
void InstallPlanner::decideFates(PlannedBatch& batch, const std::string& folder) {
  bool copiesNewFiles = true;
  for (PlannedItem& item : batch.items) {
    const bool present = isPresent(folder, item);
    if (present) {
      copiesNewFiles = batch.alwaysInstall ||
                       (batch.isBundle ? isFileOkToInstallByBundleVersion(platform_, item.source, item.target)
                                       : isFileOkToInstallByModificationTime(platform_, item.source, item.target));
    }
    if (!copiesNewFiles) {
      item.fate = Fate::kept;
      item.keptBecause = present ? KeptBecause::presentIsNewer : KeptBecause::neighbourIsNewer;
    } else if (present) {
      item.fate = Fate::replaced;
    }
    if (options_.isDetailed) addDetails(item, folder);
  }
}

bool InstallPlanner::isPresent(const std::string& folder, const PlannedItem& item) {
  const KnownFolder& known = knownFolder(folder);
  if (known.names.contains(lastPathComponent(item.target))) return true;
  // A volume may find a name that is written otherwise.
  return !known.names.empty() && platform_.files.isTaken(item.target);
}

const InstallPlanner::KnownFolder& InstallPlanner::knownFolder(const std::string& path) {
  const auto [found, isNew] = folders_.try_emplace(path);
  if (!isNew) return found->second;
  if (const auto names = platform_.files.contentsOfDirectory(path))
    found->second.names = {names->begin(), names->end()};
  if (!options_.isDetailed) return found->second;
  if (Status usable = platform_.files.checkTargetFolder(path); !usable) found->second.obstacle = usable.error();
  return found->second;
}
