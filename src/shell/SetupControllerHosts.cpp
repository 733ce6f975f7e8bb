// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "foundation/Path.h"
#include "payload/InstallerTexts.h"
#include "shell/SetupController.h"

HostList SetupController::foundHosts() const { return hostsModel_->foundHosts(); }

HostList SetupController::selectedHosts() const { return filteredHosts(foundHosts(), "hostIsSelected == YES"); }

std::string SetupController::planText() const { return preview_.text(selectedHosts()); }

bool SetupController::setTicked(std::string_view key, std::size_t row, bool isTicked) {
  if (key != "foundHosts") return false;
  const HostList hosts = foundHosts();
  if (row >= hosts.size() || transitions_ > 0) return true;
  hosts[row]->setHostIsSelected(isTicked);
  willChangeValueForKey("planText");
  didChangeValueForKey("planText");
  return true;
}

void SetupController::customHostAdded(const std::shared_ptr<HostModel>& host) {
  willChangeValueForKey("foundHosts");
  hostsModel_->addHostAtRuntime(host);
  didChangeValueForKey("foundHosts");
  if (foundHostsController_ == nullptr) return;
  const HostList hosts = foundHosts();
  foundHostsController_->selectRow(static_cast<std::size_t>(std::ranges::find(hosts, host) - hosts.begin()));
}

void SetupController::customHostRemoved(const std::shared_ptr<HostModel>& host) {
  willChangeValueForKey("foundHosts");
  hostsModel_->removeHostAtRuntime(host);
  didChangeValueForKey("foundHosts");
}

std::vector<ListRow> SetupController::hostRows() const {
  std::vector<ListRow> rows;
  const HostList hosts = foundHosts();
  for (const auto& host : hosts) {
    const std::string version = preview_.version(hosts, rows.size());
    const std::string folder = shownInText(platform_, joinPath({host->plugInPath()}));
    rows.push_back({.text = host->hostName(),
                    .detail = version.empty() ? folder : version + "  ·  " + folder,
                    .isTicked = host->hostIsSelected(),
                    .picture = iconOf(*host)});
  }
  return rows;
}

Picture SetupController::iconOf(const HostModel& host) const {
  const std::string appPath = host.appPath();
  const std::string folder =
      !appPath.empty() ? appPath : joinPath(platform_.folders.localApplications(), host.hostName());
  const auto known = icons_.find(folder);
  if (known != icons_.end()) return known->second;
  std::string icon;
  for (const WalkedItem& item : platform_.files.visibleEntries(folder)) {
    if (icon.empty() && item.isPackage) icon = platform_.workspace.iconFile(item.path);
  }
  const Picture picture = icon.empty() ? nullptr : platform_.toolkit.imageWithContentsOfFile(icon);
  icons_[folder] = picture;
  return picture;
}
