// SPDX-License-Identifier: Apache-2.0

#include "tool/LoggedPaths.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "hosts/HostsModel.h"
#include "hosts/LightRoomHostModel.h"
#include "install/InstallPlanner.h"
#include "install/tasks/ExternalEditors.h"
#include "install/tasks/LightroomPreset.h"
#include "payload/Payload.h"
#include "payload/PlugInFilesModel.h"
#include "tool/InstalledPlaces.h"

namespace {

constexpr std::size_t largestLog = std::size_t{64} << 20U;

/// Everything that an install with or without a page may put into the hosts of the volume.
std::map<std::string, PlannedItem> knownPlaces(Platform& platform) {
  HostList hosts = HostsModel(platform).foundHosts();
  hosts.push_back(LightRoomHostModel::initWithHostName(platform, "Adobe Lightroom"));
  std::map<std::string, PlannedItem> places;
  forEachItem(InstallPlanner(platform, {.hasPage = true}).plan(hosts),
              [&](const PlannedItem& item, const PlannedGroup&) { places.insert_or_assign(item.target, item); });
  return places;
}

/// What the payload has for hosts: the path in its folder, with a slash before it, and the item.
std::map<std::string, PlannedItem> itemsForHosts(Platform& platform) {
  const Payload payload(platform);
  std::map<std::string, PlannedItem> items;
  for (const char* const name : {"LIGHTROOM", "PHOTOSHOP", "PHOTOSHOP_PLUGINS"}) {
    const std::string folder = payload.folder(name);
    for (const WalkedItem& item : payload.filesBelow(folder).items) {
      items.insert_or_assign(
          item.path.substr(folder.size()),
          PlannedItem{.source = item.path, .target = {}, .kind = item.isPackage ? ItemKind::bundle : ItemKind::file});
    }
  }
  return items;
}

}  // namespace

bool isPlainPath(std::string_view path) {
  if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) return false;
  const auto components = split(path.substr(1), '/');
  return std::ranges::none_of(components, [](std::string_view component) {
    return component.empty() || component == "." || component == "..";
  });
}

class LoggedPaths::Recognition {
 public:
  explicit Recognition(Platform& platform)
      : places_(knownPlaces(platform)),
        items_(itemsForHosts(platform)),
        ownFiles_{externalEditorsList(platform), lightroomPresetFile(platform)} {}

  /// The lines of the log. A path that has a line end in it takes several.
  [[nodiscard]] std::vector<std::string> linesOf(std::string_view log) const {
    std::vector<std::string> lines;
    while (!log.empty()) {
      std::string line(log.substr(0, log.find('\n')));
      for (const auto& [place, item] : places_) {
        const bool isLonger = place.find('\n') != std::string::npos && place.size() > line.size();
        if (isLonger && log.starts_with(place) && log.substr(place.size()).starts_with('\n')) line = place;
      }
      log.remove_prefix(std::min(line.size() + 1, log.size()));
      if (!line.empty()) lines.push_back(std::move(line));
    }
    return lines;
  }

  [[nodiscard]] LoggedPath recognise(const std::string& path) const {
    LoggedPath logged{.path = path};
    if (!isPlainPath(path)) return logged;
    if (const auto known = places_.find(path); known != places_.end()) {
      logged.origin = LoggedPath::Origin::place;
      logged.item = known->second;
    } else if (std::ranges::find(ownFiles_, path) != ownFiles_.end()) {
      logged.origin = LoggedPath::Origin::ownFile;
    } else if (const PlannedItem* const item = itemEnding(path)) {
      logged.origin = LoggedPath::Origin::elsewhere;
      logged.item = *item;
      logged.item->target = path;
    }
    return logged;
  }

 private:
  /// The item of the payload whose path the text ends with; the longest one.
  [[nodiscard]] const PlannedItem* itemEnding(const std::string& path) const {
    for (std::size_t start = path.find('/', 1); start != std::string::npos; start = path.find('/', start + 1)) {
      const auto found = items_.find(path.substr(start));
      if (found != items_.end()) return &found->second;
    }
    return nullptr;
  }

  std::map<std::string, PlannedItem> places_;
  std::map<std::string, PlannedItem> items_;
  std::array<std::string, 2> ownFiles_;
};

LoggedPaths::LoggedPaths(Platform& platform) : logPath_(PlugInFilesModel(platform).installerLogPath()) {
  const auto log = platform.files.readFile(logPath_, largestLog);
  if (!log) {
    problem_ = log.error();
    return;
  }
  const Recognition recognition(platform);
  std::set<std::string> seen;
  for (const std::string& line : recognition.linesOf(*log)) {
    if (seen.insert(line).second) paths_.push_back(recognition.recognise(line));
  }
}
