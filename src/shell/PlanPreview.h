// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "hosts/HostModel.h"
#include "install/InstallPlan.h"
#include "platform/Platform.h"

/// Tells what an install would do, before it is begun. A plan is made again when other hosts are asked for, or when
/// their folders have changed.
class PlanPreview {
 public:
  explicit PlanPreview(Platform& platform) : platform_(platform) {}

  /// Room that an install into these hosts needs.
  [[nodiscard]] std::string text(const HostList& selected);
  /// See versionText().
  [[nodiscard]] std::string version(const HostList& found, std::size_t row);
  /// What is on the disk has changed.
  void forget() { selected_ = found_ = {}; }

 private:
  struct Known {
    std::vector<std::string> places = {};  ///< of the hosts that it was made for
    bool isMade = false;
    InstallPlan plan = {};
  };
  const InstallPlan& planFor(const HostList& hosts, bool isDetailed, Known& known);

  Platform& platform_;
  Known selected_;
  Known found_;
};
