// SPDX-License-Identifier: Apache-2.0

// What the custom screen shows and sets.
#include <algorithm>
#include <string_view>
#include <vector>

#include "hosts/HostsController.h"
#include "platform/OwnerTables.h"

struct HostsController::Tables {
  using Of = HostsController;
  static constexpr PropertyEntry<Of> properties[] = {
      {"customPath", read<&Of::customPath>},
      {"installScriptsAndPanelsChosen", read<&Of::installScriptsAndPanelsChosen>,
       writeFlag<&Of::setInstallScriptsAndPanelsChosen>},
      {"installPluginForCustomInstall", read<&Of::installPluginForCustomInstall>,
       writeFlag<&Of::setInstallPluginForCustomInstall>},
      {"installPlugin64ForCustomInstall", read<&Of::installPlugin64ForCustomInstall>,
       writeFlag<&Of::setInstallPlugin64ForCustomInstall>},
      {"scriptsOrPanelsHosts", read<&Of::scriptsOrPanelsRows>},
      {"scriptsOrPanelsHostsExsist", read<&Of::scriptsOrPanelsHostsExsist>},
      {"customInstallPathLabelText", read<&Of::modelText<&HostsModel::customInstallPathLabelText>>},
      {"customInstallBrowseButtonText", read<&Of::modelText<&HostsModel::customInstallBrowseButtonText>>},
      {"customInstallButtonText", read<&Of::modelText<&HostsModel::customInstallButtonText>>},
      {"customInstallCheckBoxText", read<&Of::modelText<&HostsModel::customInstallCheckBoxText>>},
      {"customInstallHostsExplanationText", read<&Of::modelText<&HostsModel::customInstallHostsExplanationText>>}};
};

void HostsController::setInstallScriptsAndPanelsChosen(bool chosen) {
  mainController_->willChangeValueForKey("enableForward");
  installScriptsAndPanelsChosen_ = chosen;
  mainController_->didChangeValueForKey("enableForward");
}

void HostsController::setInstallPluginForCustomInstall(bool install) {
  mainController_->willChangeValueForKey("enableForward");
  installPluginForCustomInstall_ = install;
  mainController_->didChangeValueForKey("enableForward");
  willChangeValueForKey("customPath");
  didChangeValueForKey("customPath");
}

std::string HostsController::customPath() const {
  return customHost_ != nullptr && installPluginForCustomInstall_ ? customHost_->plugInPath() : "";
}

HostList HostsController::scriptsOrPanelsHosts() const {
  return installScriptsAndPanelsChosen_ && model_ != nullptr ? model_->scriptsOrPanelsHosts() : HostList();
}

std::vector<ListRow> HostsController::scriptsOrPanelsRows() const {
  std::vector<ListRow> rows;
  for (const auto& host : scriptsOrPanelsHosts()) rows.push_back({.text = host->hostName()});
  return rows;
}

std::optional<ShownValue> HostsController::shownValue(std::string_view key) const {
  return readFrom(Tables::properties, key, *this);
}

bool HostsController::setShownValue(std::string_view key, const ShownValue& value) {
  return writeTo(Tables::properties, key, *this, value);
}

bool HostsController::setTicked(std::string_view key, std::size_t /*row*/, bool /*isTicked*/) {
  return key == "scriptsOrPanelsHosts";  // has no rows
}

bool HostsController::performAction(std::string_view action, const std::string& sender) {
  static constexpr ActionEntry<HostsController> actions[] = {
      {"buttonPressed:", [](HostsController& of, const std::string& from) { of.buttonPressed(from); }},
      {"browseButtonPressed:", [](HostsController& of, const std::string& from) { of.browseButtonPressed(from); }},
      {"checkboxClicked:", [](HostsController& of, const std::string& from) { of.checkboxClicked(from); }}};
  const auto* const entry = entryFor(actions, action);
  if (entry != nullptr) entry->perform(*this, sender);
  return entry != nullptr;
}
