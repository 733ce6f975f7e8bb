// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "install/InstallPlan.h"
#include "platform/Platform.h"

/// The places of a plan and what an install leaves there. An item of the payload that goes to a place after another one
/// counts; so does one that goes into a folder that is installed before it.
class InstalledPlaces {
 public:
  using Differs = std::function<bool(const ItemDifference&)>;

  explicit InstalledPlaces(Platform& platform);

  /// Adds an item that an install puts in place after those that were added before. The item is copied.
  void add(const PlannedItem& item);
  void add(const InstallPlan& plan);

  /// Each place once, in the order in which it was first added.
  [[nodiscard]] const std::vector<std::string>& places() const { return places_; }
  /// What is installed there; null for another place.
  [[nodiscard]] const PlannedItem* itemAt(const std::string& place) const;

  /// Which files that are no part of an item count. In a folder that is no bundle people may keep files of their own.
  enum class Extras { inBundles, everywhere };

  /// Compares the place with what is installed there, and tells of differences; `differs` ends the comparison by
  /// returning false. Owner and group should be those of the log of installed paths: they are those of the user for
  /// whom it was installed, whoever asks now.
  Status compare(const std::string& place, const Differs& differs, Extras extras = Extras::inBundles) const;

  /// Whether the place is as an install leaves it.
  [[nodiscard]] bool isIntact(const std::string& place) const;

 private:
  [[nodiscard]] bool isOthers(const std::string& path, std::size_t number) const;

  struct Installed {
    PlannedItem item;
    std::size_t number = 0;
  };
  Platform& platform_;
  std::optional<ItemOwner> owner_;
  std::vector<std::string> places_;
  std::map<std::string, Installed> items_;
  std::size_t added_ = 0;
};

/// All items of the plan in the order of the install.
void forEachItem(const InstallPlan& plan, const std::function<void(const PlannedItem&, const PlannedGroup&)>& visit);
