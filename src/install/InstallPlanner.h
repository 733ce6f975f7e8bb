// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "install/InstallPlan.h"
#include "platform/Platform.h"

/// What an install is planned for.
struct PlanOptions {
  /// Whether a page shows the install: only then have hosts been selected by a person, Lightroom among them.
  bool hasPage = false;
  /// Whether versions are read and obstacles are looked for, as a preview wants.
  bool isDetailed = false;
};

/// Computes what goes where. Changes nothing.
class InstallPlanner {
 public:
  InstallPlanner(Platform& platform, PlanOptions options)
      : platform_(platform), payload_(platform), options_(options) {}

  /// Everything that an install into these hosts does.
  [[nodiscard]] InstallPlan plan(const HostList& hosts);

  // Parts of it, each as a plan of its own.
  /// The payload that belongs to no host.
  [[nodiscard]] InstallPlan planHostIndependent(const HostList& selectedHosts);
  /// The payload of one host.
  [[nodiscard]] InstallPlan planHost(const std::shared_ptr<HostModel>& host);
  /// Every package and every file below `from`, to the same place below `to`.
  [[nodiscard]] InstallPlan planHostFiles(const std::string& from, const std::string& to);
  /// The items, to one folder.
  [[nodiscard]] InstallPlan planSourceFiles(const std::vector<std::string>& sources, const std::string& toPath,
                                            bool isBundle, bool alwaysInstall);

 private:
  /// What is known of a folder on the volume.
  struct KnownFolder {
    std::set<std::string> names = {};
    std::optional<Error> obstacle = std::nullopt;
  };

  void addHostIndependent(PlannedGroup& group, const HostList& selectedHosts);
  void addHost(PlannedGroup& group, const HostModel& host);
  void addHostFiles(PlannedGroup& group, const std::string& from, const std::string& to);
  [[nodiscard]] PlannedItem planItem(const WalkedItem& source, const std::string& target) const;
  void decideFates(PlannedBatch& batch, const std::string& folder);
  [[nodiscard]] bool isPresent(const std::string& folder, const PlannedItem& item);
  const KnownFolder& knownFolder(const std::string& path);
  void addDetails(PlannedItem& item, const std::string& folder);
  void stopAfterFailures(std::vector<PlannedGroup>& groups) const;
  [[nodiscard]] std::vector<SpaceNeed> spaceFor(const std::vector<PlannedGroup>& groups) const;
  [[nodiscard]] InstallPlan finish(HostList hosts, std::vector<PlannedGroup> groups);

  Platform& platform_;
  Payload payload_;
  PlanOptions options_;
  std::map<std::string, KnownFolder> folders_;
  std::vector<SkippedEntry> skipped_;
};
