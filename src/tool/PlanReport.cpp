// SPDX-License-Identifier: Apache-2.0

#include "tool/PlanReport.h"

#include <algorithm>
#include <ostream>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/HostsModel.h"
#include "hosts/LightRoomHostModel.h"
#include "install/InstallPlanner.h"
#include "install/tasks/AnalyticsIdentifier.h"
#include "install/tasks/ExternalEditors.h"
#include "install/tasks/LightroomPreset.h"
#include "payload/Configuration.h"
#include "payload/PlugInFilesModel.h"
#include "tool/InstalledPlaces.h"

namespace {

class PlanWriter {
 public:
  PlanWriter(const PlanReport& report, const ToolTexts& texts, std::ostream& output)
      : report_(report), texts_(texts), output_(output) {}

  void write(const std::string& volume) {
    line(formatted(texts_("tool_plan_title", "Installing %1$@ on %2$@ would do this:"), texts_.product(), volume));
    line(formatted(texts_("quiet_hosts", "Hosts found: %@"), std::to_string(report_.plan.hosts().size())));
    for (const auto& host : report_.plan.hosts()) {
      const std::string folder = joinPath({host->plugInPath()});
      line("  " + host->hostName() + (folder.empty() ? "" : "  (" + folder + ")"));
    }
    std::size_t items = 0;
    forEachItem(report_.plan, [&](const PlannedItem& /*item*/, const PlannedGroup& /*group*/) { ++items; });
    line(formatted(texts_("tool_plan_items", "Items: %1$@, in %2$@ places, %3$@"), std::to_string(items),
                   std::to_string(report_.places), ToolTexts::size(report_.plan.totalSize().bytes)));
    forEachItem(report_.plan, [this](const PlannedItem& item, const PlannedGroup& /*group*/) { writeItem(item); });
    for (const std::string& path : report_.otherFiles) {
      line("  " + formatted(texts_("tool_written", "written: %@"), path));
    }
    writeProblems();
    for (const SpaceNeed& need : report_.plan.space()) {
      line(formatted(texts_("tool_plan_space", "Space: %1$@ needed, %2$@ free"), ToolTexts::size(need.required),
                     ToolTexts::size(need.available)));
    }
    line(formatted(texts_("tool_plan_changes", "Places that would change: %@"), std::to_string(report_.changes)));
  }

 private:
  void writeItem(const PlannedItem& item) {
    std::string text = "  " + fate(item) + ": " + item.target;
    if (item.details != nullptr) {
      const auto& [obstacle, offered, present] = *item.details;
      if (!offered.empty() && !present.empty() && offered != present) {
        text += "  (" + present + " → " + offered + ")";
      } else if (!offered.empty()) {
        text += "  (" + offered + ")";
      }
      if (obstacle) text += ": " + obstacle->description();
    }
    line(text);
  }

  [[nodiscard]] std::string fate(const PlannedItem& item) const {
    switch (item.keptBecause) {
      case KeptBecause::presentIsNewer: return texts_("tool_kept_newer", "kept, what is there is newer");
      case KeptBecause::neighbourIsNewer: return texts_("tool_kept_neighbour", "not added, what is beside it is newer");
      case KeptBecause::obstacle: return texts_("tool_kept_obstacle", "cannot be installed");
      case KeptBecause::earlierFailure:
        return texts_("tool_kept_earlier", "not installed, something before it cannot be");
      case KeptBecause::nothing: break;
    }
    if (item.fate == Fate::added) return texts_("tool_added", "added");
    return report_.isIntact(item) ? texts_("tool_intact", "replaced by the same") : texts_("tool_replaced", "replaced");
  }

  void writeProblems() {
    std::vector<Error> errors = report_.unreadable;
    for (const PlannedGroup& group : report_.plan.groups()) {
      errors.insert(errors.end(), group.unreadable.begin(), group.unreadable.end());
    }
    if (errors.empty()) return;
    line(formatted(texts_("quiet_unreadable", "Could not be read: %@"), std::to_string(errors.size())));
    for (const Error& error : errors) line("  " + error.description());
  }

  void line(const std::string& text) { output_ << onOneLine(text) << '\n'; }

  const PlanReport& report_;
  const ToolTexts& texts_;
  std::ostream& output_;
};

}  // namespace

namespace {

/// The list of external editors, if there will be any, what else the maker wants written, and the log of installed
/// paths.
std::vector<std::string> otherFiles(Platform& platform, const HostList& hosts, const std::set<std::string>& attempted) {
  std::vector<std::string> files;
  // An install without a window has no hosts to offer: nobody chose one.
  const auto willExist = [&](const std::string& path) {
    return attempted.contains(path) || platform.files.exists(path);
  };
  if (!externalEditorsText(platform, {}, willExist).empty()) files.push_back(externalEditorsList(platform));
  const Configuration configuration(platform);
  const bool hasLightroom = std::ranges::any_of(hosts, [](const std::shared_ptr<HostModel>& host) {
    return dynamic_cast<const LightRoomHostModel*>(host.get()) != nullptr;
  });
  if (hasLightroom && !configuration.lightroomPreset().empty()) files.push_back(lightroomPresetFile(platform));
  const std::string identifier = analyticsIdentifierFile(platform);
  if (configuration.hasIdentifierFile() && !platform.files.exists(identifier)) files.push_back(identifier);
  if (!files.empty() || !attempted.empty()) files.push_back(PlugInFilesModel(platform).installerLogPath());
  return files;
}

}  // namespace

PlanReport makePlanReport(Platform& platform) {
  const HostList hosts = HostsModel(platform).foundHosts();
  PlanReport report{.plan = InstallPlanner(platform, {.hasPage = false, .isDetailed = true}).plan(hosts)};
  InstalledPlaces places(platform);
  places.add(report.plan);
  report.places = places.places().size();
  std::set<std::string> attempted;
  forEachItem(report.plan, [&](const PlannedItem& item, const PlannedGroup& /*group*/) {
    if (item.fate == Fate::kept || !attempted.insert(item.target).second) return;
    if (places.isIntact(item.target)) {
      report.intact.insert(item.target);
    } else {
      ++report.changes;
    }
  });
  report.otherFiles = otherFiles(platform, hosts, attempted);
  report.unreadable = platform.files.unreadable();
  return report;
}

void writePlan(const PlanReport& report, const std::string& volume, const ToolTexts& texts, std::ostream& output) {
  PlanWriter(report, texts, output).write(volume);
}
