// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>
#include <set>
#include <string>
#include <vector>

#include "install/InstallPlan.h"
#include "tool/ToolTexts.h"

/// What an install without a window would do.
struct PlanReport {
  InstallPlan plan;
  std::set<std::string> intact = {};         ///< places that an install would leave as they are
  std::vector<Error> unreadable = {};        ///< what could not be looked at, so that something may be missing
  std::vector<std::string> otherFiles = {};  ///< that the installer writes itself
  std::size_t places = 0;                    ///< to which items go
  std::size_t changes = 0;                   ///< places that an install would change

  [[nodiscard]] bool isIntact(const PlannedItem& item) const { return intact.contains(item.target); }
};

/// Looks at the volume and the payload, and changes nothing.
[[nodiscard]] PlanReport makePlanReport(Platform& platform);

void writePlan(const PlanReport& report, const std::string& volume, const ToolTexts& texts, std::ostream& output);
