// SPDX-License-Identifier: Apache-2.0

#include "tool/RemovalPlan.h"

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "install/tasks/ExternalEditors.h"
#include "payload/InstallerTexts.h"
#include "payload/Payload.h"
#include "tool/InstalledPlaces.h"
#include "tool/LoggedPaths.h"

namespace {

using Difference = ItemDifference::Kind;

/// "/a" and what is in the root by another name is everybody's.
bool isTopLevel(const std::string& path) { return std::ranges::count(path, '/') < 2; }

bool isFolder(const Platform& platform, const std::string& path) {
  const auto attributes = platform.files.attributesOfItem(path);
  return attributes && attributes->type == ItemType::folder;
}

/// Whether the name has the product's words in it, one after the other: "Light" is no word of "Lightroom".
bool namesProduct(std::string_view name, const std::string& product) {
  const auto isBoundary = [&](std::size_t place) {
    return place == 0 || place >= name.size() || name[place] == ' ' || name[place] == '.' || name[place - 1] == ' ';
  };
  for (std::size_t at = name.find(product); at != std::string_view::npos; at = name.find(product, at + 1)) {
    if (isBoundary(at) && isBoundary(at + product.size())) return true;
  }
  return false;
}

/// Whether the folder, or one above it, has the maker's or the product's name.
bool hasMakersName(const Platform& platform, const std::string& folder) {
  const std::string company = companyName(platform);
  const std::string product = productName(platform);
  const auto components = split(folder, '/');
  return std::ranges::any_of(components, [&](std::string_view component) {
    return (!product.empty() && namesProduct(component, product)) || (!company.empty() && component == company);
  });
}

class RemovalPlanner {
 public:
  RemovalPlanner(Platform& platform, bool keepsChanged)
      : platform_(platform), log_(platform), places_(platform), keepsChanged_(keepsChanged) {}

  RemovalPlan plan() {
    if (log_.problem()) return {};
    plan_.log = log_.logPath();
    for (const LoggedPath& logged : log_.paths()) {
      if (logged.item) places_.add(*logged.item);
    }
    const auto& logged = log_.paths();
    std::for_each(logged.rbegin(), logged.rend(), [this](const LoggedPath& path) { look(path); });
    // The folder of the list comes into being even where there is nothing to list.
    noteFolders(externalEditorsList(platform_), externalEditorsList(platform_));
    foldEmptiedFolders();
    return std::move(plan_);
  }

 private:
  /// What is known of one installed item.
  struct Findings {
    std::vector<KeptPath> kept = {};
    std::vector<std::string> changed = {};
  };

  void look(const LoggedPath& logged) {
    if (!platform_.files.isTaken(logged.path)) {
      plan_.gone.push_back(logged.path);
      return;
    }
    plan_.logged.insert(plan_.logged.begin(), logged.path);
    if (logged.origin == LoggedPath::Origin::unknown || isTopLevel(logged.path)) {
      keep(logged, {logged.path, KeptPath::Reason::unknown});
    } else if (logged.origin == LoggedPath::Origin::ownFile) {
      if (isFolder(platform_, logged.path)) return keep(logged, {logged.path, KeptPath::Reason::other});
      plan_.removed.push_back(logged.path);
      noteFolders(logged.path, logged.path);
    } else {
      lookAtItem(logged);
    }
  }

  void keep(const LoggedPath& logged, KeptPath kept) {
    plan_.kept.push_back(std::move(kept));
    plan_.stillLogged.push_back(logged.path);
  }

  void lookAtItem(const LoggedPath& logged) {
    Findings findings = findingsAt(logged);
    const bool isWhole = findings.kept.empty();
    const bool isOther = !isWhole && findings.kept.front().path == logged.path;
    const bool isUnclear =
        std::ranges::find(findings.kept, KeptPath::Reason::unreadable, &KeptPath::reason) != findings.kept.end();
    if (isOther || isUnclear) return keep(logged, findings.kept.front());
    const bool staysInLog =
        std::ranges::find(findings.kept, KeptPath::Reason::changed, &KeptPath::reason) != findings.kept.end();
    if (staysInLog) plan_.stillLogged.push_back(logged.path);
    noteApplication(logged, isWhole);
    std::ranges::move(findings.changed, std::back_inserter(plan_.changed));
    if (isWhole) {
      plan_.removed.push_back(logged.path);
    } else {
      removeAround(logged.path, findings.kept);
      std::ranges::move(findings.kept, std::back_inserter(plan_.kept));
    }
    noteFolders(logged.path, pathInPayload(*logged.item));
  }

  [[nodiscard]] Findings findingsAt(const LoggedPath& logged) {
    Findings findings;
    const bool keepsChanged = keepsChanged_ || logged.origin == LoggedPath::Origin::elsewhere;
    const auto tell = [&](const ItemDifference& difference) {
      const std::string& path = difference.path;
      const bool isChange = difference.kind == Difference::content || difference.kind == Difference::size;
      const bool isOther = difference.kind == Difference::type || difference.kind == Difference::link;
      if (difference.kind == Difference::extra) findings.kept.push_back({path, KeptPath::Reason::foreign});
      if (difference.kind == Difference::unreadable) findings.kept.push_back({path, KeptPath::Reason::unreadable});
      if (isOther) findings.kept.push_back({path, KeptPath::Reason::other});
      if (isChange && keepsChanged) findings.kept.push_back({path, KeptPath::Reason::changed});
      if (isChange && !keepsChanged) findings.changed.push_back(path);
      return true;
    };
    const Status compared = places_.compare(logged.path, tell, InstalledPlaces::Extras::everywhere);
    if (!compared) findings.kept.push_back({logged.path, KeptPath::Reason::unreadable});
    return findings;
  }

  /// Removes what is in the folder except the paths, and the folders that lead to them.
  void removeAround(const std::string& folder, const std::vector<KeptPath>& kept) {
    for (const std::string& name : platform_.files.contentsOfDirectory(folder).valueOr({})) {
      const std::string path = joinPath(folder, name);
      const auto isHere = [&](const KeptPath& other) { return isAtOrBelow(other.path, path); };
      const auto first = std::ranges::find_if(kept, isHere);
      if (first == kept.end()) {
        plan_.removed.push_back(path);
      } else if (std::ranges::find(kept, path, &KeptPath::path) == kept.end()) {
        removeAround(path, kept);
      }
    }
  }

  void noteApplication(const LoggedPath& logged, bool isWhole) {
    if (!isWhole || !logged.item->isRegistered) return;
    const auto bundle = platform_.bundles.bundleAtPath(logged.path);
    if (bundle == nullptr) return;
    plan_.applications.push_back({logged.path, bundle->infoValue("CFBundleIdentifier").text()});
  }

  /// Where the item stands below the folder of the payload that is installed as a whole.
  [[nodiscard]] std::string pathInPayload(const PlannedItem& item) const {
    const Payload payload(platform_);
    for (const char* const name : {"HD", "LIGHTROOM", "PHOTOSHOP", "PHOTOSHOP_PLUGINS"}) {
      const std::string folder = payload.folder(name) + "/";
      if (item.source.starts_with(folder)) return "/" + item.source.substr(folder.size());
    }
    return {};
  }

  /// Notes the folders that the payload itself has around the item: they came with it, or were there before.
  void noteFolders(const std::string& path, std::string_view inPayload) {
    std::string folder = path;
    for (auto levels = std::ranges::count(inPayload, '/'); levels > 1; --levels) {
      folder = deletingLastPathComponent(folder);
      if (!isTopLevel(folder)) folders_.insert(folder);
    }
  }

  /// Has folders of the maker go with all that is in them, and tells of others that are left empty.
  void foldEmptiedFolders() {
    for (auto inner = folders_.rbegin(); inner != folders_.rend(); ++inner) {
      const std::string& folder = *inner;
      const auto names = platform_.files.contentsOfDirectory(folder);
      if (!names || folder == deletingLastPathComponent(plan_.log)) continue;  // the log goes by itself
      const bool isEmptied = std::ranges::all_of(*names, [&](const std::string& name) {
        return std::ranges::find(plan_.removed, joinPath(folder, name)) != plan_.removed.end();
      });
      if (!isEmptied) continue;
      if (!hasMakersName(platform_, folder)) {
        plan_.kept.push_back({folder, KeptPath::Reason::empty});
        continue;
      }
      const auto isInside = [&](const std::string& path) { return isAtOrBelow(path, folder); };
      const auto first = std::ranges::find_if(plan_.removed, isInside);
      const auto position = first - plan_.removed.begin();
      std::erase_if(plan_.removed, isInside);
      plan_.removed.insert(plan_.removed.begin() + position, folder);
    }
    dropNested();
  }

  /// An item in a folder that goes as a whole needs no removal of its own.
  void dropNested() {
    const std::set<std::string> all(plan_.removed.begin(), plan_.removed.end());
    std::erase_if(plan_.removed, [&](const std::string& path) {
      for (std::string folder = deletingLastPathComponent(path); folder.size() > 1;
           folder = deletingLastPathComponent(folder)) {
        if (all.contains(folder)) return true;
      }
      return false;
    });
  }

  Platform& platform_;
  LoggedPaths log_;
  InstalledPlaces places_;
  bool keepsChanged_;
  std::set<std::string> folders_;
  RemovalPlan plan_;
};

}  // namespace

RemovalPlan planRemoval(Platform& platform, bool keepsChanged) { return RemovalPlanner(platform, keepsChanged).plan(); }

std::string withEmptiedFolders(Platform& platform, const std::string& path) {
  std::string emptied = path;
  for (;;) {
    const std::string folder = deletingLastPathComponent(emptied);
    const auto names = platform.files.contentsOfDirectory(folder);
    const bool isAlone = names && names->size() == 1;
    if (!isAlone || isTopLevel(folder) || !hasMakersName(platform, folder)) return emptied;
    emptied = folder;
  }
}
