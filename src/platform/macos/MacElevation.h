// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/Authorization.h"
#include "platform/files/Elevation.h"
#include "platform/files/Places.h"
#include "platform/posix/PosixUser.h"

/// Runs a tool of the system with administrator rights, and waits until it has ended.
using RunTool = std::function<LaunchStatus(const std::string& tool, const std::vector<std::string>& arguments)>;

/// Changes by the system's own tools, in the places and nowhere else. Whether a tool did its work shows on the disk.
///
/// A tool takes a path where everything else here takes an open folder: it is the path that the folder has at that
/// moment. There is no tool that exchanges two items; who wants that sets the old one aside first.
class MacElevation : public Elevation {
 public:
  MacElevation(RunTool run, Places places, const UserAccount& user, Ownership ownership)
      : run_(std::move(run)), places_(std::move(places)), user_(user), ownership_(ownership) {}

  [[nodiscard]] bool covers(const std::string& resolved) const override { return places_.reach(resolved); }
  Status makeFolder(const Volume::Spot& place, mode_t mode) override;
  Status move(const Volume::Spot& from, const Volume::Spot& to, Move how) override;
  Status remove(const Volume::Spot& place) override;
  Status handOver(const Volume::Spot& place) override;

 private:
  /// Success when the tool was run, whatever it did. Fails with authorizationErrorDomain without rights.
  Status run(const std::string& tool, const std::vector<std::string>& arguments, const Volume::Spot& place);
  /// Adds the paths of the user's own items.
  static Status addOwnItems(int folder, const std::string& name, const std::string& path, uid_t user,
                            std::vector<std::string>& paths);

  RunTool run_;
  Places places_;
  const UserAccount& user_;
  const Ownership ownership_;
};
