// SPDX-License-Identifier: Apache-2.0

#include "shell/PlanPreview.h"

#include <utility>

#include "install/InstallPlanner.h"
#include "install/InstallTexts.h"

std::string PlanPreview::text(const HostList& selected) {
  return planText(platform_, planFor(selected, /*isDetailed=*/false, selected_));
}

std::string PlanPreview::version(const HostList& found, std::size_t row) {
  return versionText(platform_, planFor(found, /*isDetailed=*/true, found_), row);
}

const InstallPlan& PlanPreview::planFor(const HostList& hosts, bool isDetailed, Known& known) {
  std::vector<std::string> places;
  for (const auto& host : hosts) places.push_back(host->hostName() + '\n' + host->plugInPath());
  if (std::exchange(known.isMade, true) && known.places == places) return known.plan;
  known.places = std::move(places);
  known.plan = InstallPlanner(platform_, {.hasPage = true, .isDetailed = isDetailed}).plan(hosts);
  return known.plan;
}
