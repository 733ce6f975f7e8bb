// SPDX-License-Identifier: Apache-2.0

#include "tool/InstalledPlaces.h"

#include "foundation/Path.h"
#include "payload/PlugInFilesModel.h"

namespace {

constexpr std::uint32_t installedMode = 0775;

}  // namespace

InstalledPlaces::InstalledPlaces(Platform& platform) : platform_(platform) {
  const auto log = platform.files.attributesOfItem(PlugInFilesModel(platform).installerLogPath());
  if (log) owner_ = log->owner;
}

void InstalledPlaces::add(const PlannedItem& item) {
  const auto [found, isNew] = items_.insert_or_assign(item.target, Installed{item, added_++});
  if (isNew) places_.push_back(item.target);
}

void InstalledPlaces::add(const InstallPlan& plan) {
  forEachItem(plan, [this](const PlannedItem& item, const PlannedGroup& /*group*/) { add(item); });
}

const PlannedItem* InstalledPlaces::itemAt(const std::string& place) const {
  const auto found = items_.find(place);
  return found == items_.end() ? nullptr : &found->second.item;
}

Status InstalledPlaces::compare(const std::string& place, const Differs& differs, Extras extras) const {
  const Installed& installed = items_.at(place);
  const auto tell = [&](const ItemDifference& difference) {
    if (isOthers(difference.path, installed.number)) return true;
    const bool isExtra = difference.kind == ItemDifference::Kind::extra;
    const bool mayBeThere = isExtra && extras == Extras::inBundles && installed.item.kind == ItemKind::folder;
    return mayBeThere || differs(difference);
  };
  return platform_.files.compareItem(installed.item.source, place,
                                     {.owner = owner_, .permissions = installedMode, .differs = tell});
}

bool InstalledPlaces::isIntact(const std::string& place) const {
  bool isIntact = true;
  const Status compared = compare(place, [&](const ItemDifference& /*difference*/) { return isIntact = false; });
  return isIntact && compared;
}

/// Whether the path belongs to an item that is installed later, into the place of this one.
bool InstalledPlaces::isOthers(const std::string& path, std::size_t number) const {
  for (std::string folder = path; folder.size() > 1; folder = deletingLastPathComponent(folder)) {
    const auto found = items_.find(folder);
    if (found != items_.end() && found->second.number > number) return true;
  }
  return false;
}

void forEachItem(const InstallPlan& plan, const std::function<void(const PlannedItem&, const PlannedGroup&)>& visit) {
  for (const PlannedGroup& group : plan.groups()) {
    for (const PlannedBatch& batch : group.batches) {
      for (const PlannedItem& item : batch.items) visit(item, group);
    }
  }
}
