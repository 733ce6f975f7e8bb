// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hosts/HostModel.h"
#include "payload/Payload.h"
#include "platform/FileSystem.h"

enum class ItemKind : std::uint8_t { bundle, folder, file, other };

/// What an install makes of an item's place.
enum class Fate : std::uint8_t { added, replaced, kept };

/// Why the place stays as it is.
enum class KeptBecause : std::uint8_t {
  nothing,           ///< it does not
  presentIsNewer,    ///< by version for bundles, else by date
  neighbourIsNewer,  ///< an item before it in the batch was kept, and this one is missing
  obstacle,          ///< it cannot be installed; the install tries and tells of it
  earlierFailure,    ///< something before it cannot be installed, and the install stops there
};

/// What most items have none of.
struct ItemDetails {
  std::optional<Error> obstacle = std::nullopt;  ///< why the item cannot be installed, as far as it is known
  // As the bundles state them; empty for other items and where the plan was asked for no details.
  std::string offeredVersion = {};
  std::string presentVersion = {};
};

/// One item of the payload and its place.
struct PlannedItem {
  std::string source;  ///< in the installer's bundle
  std::string target;  ///< on the target volume
  TreeSize size = {};
  ItemKind kind = ItemKind::file;
  Fate fate = Fate::added;
  KeptBecause keptBecause = KeptBecause::nothing;
  bool isRegistered = false;  ///< an application, made known to the system and released from quarantine
  std::shared_ptr<const ItemDetails> details = nullptr;  ///< null for none

  /// Whether the install sets out to put it in place.
  [[nodiscard]] bool isAttempted() const { return fate != Fate::kept || keptBecause == KeptBecause::obstacle; }
};

/// Items that go to one folder, one after the other: where an installed item is newer and stays, items that are missing
/// beside it stay missing, until one is replaced again.
struct PlannedBatch {
  bool isBundle = false;
  bool alwaysInstall = false;  ///< whatever is there already
  std::vector<PlannedItem> items = {};
};

/// What is installed together: the payload that belongs to no host, or that of one host. A failure in one group keeps
/// the next ones from being installed.
struct PlannedGroup {
  std::optional<std::size_t> host = std::nullopt;  ///< position in InstallPlan::hosts()
  std::vector<PlannedBatch> batches = {};
  std::vector<Error> unreadable = {};  ///< folders of the payload whose content is unknown
};

/// What the items need of one file system.
struct SpaceNeed {
  std::string path;             ///< of the first item there
  std::uint64_t required = 0;   ///< bytes to have all items staged
  std::uint64_t largest = 0;    ///< bytes to have the largest item staged
  std::uint64_t available = 0;  ///< bytes
  bool mayShareBlocks = false;  ///< whether copies may need no room
};

/// What goes where: computed once, before anything is changed, and never changed after that.
class InstallPlan {
 public:
  InstallPlan() = default;
  InstallPlan(HostList hosts, std::vector<PlannedGroup> groups, std::vector<SkippedEntry> skipped,
              std::vector<SpaceNeed> space)
      : hosts_(std::move(hosts)), groups_(std::move(groups)), skipped_(std::move(skipped)), space_(std::move(space)) {}

  [[nodiscard]] const HostList& hosts() const { return hosts_; }
  /// In the order of the install.
  [[nodiscard]] const std::vector<PlannedGroup>& groups() const { return groups_; }
  /// Entries of the payload that are not installed.
  [[nodiscard]] const std::vector<SkippedEntry>& skipped() const { return skipped_; }
  [[nodiscard]] const std::vector<SpaceNeed>& space() const { return space_; }

  /// Content of all items that the install sets out to put in place; one that goes to several places counts for each.
  [[nodiscard]] TreeSize totalSize() const;

 private:
  HostList hosts_;
  std::vector<PlannedGroup> groups_;
  std::vector<SkippedEntry> skipped_;
  std::vector<SpaceNeed> space_;
};
