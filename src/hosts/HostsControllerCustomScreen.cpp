// What the custom screen shows and sets.
#include <algorithm>
#include <string_view>
#include <vector>

#include "hosts/HostsController.h"

namespace {

struct ModelText {
  std::string_view key;
  const std::string& (HostsModel::*text)() const;
};
constexpr ModelText modelTexts[] = {
    {"customInstallPathLabelText", &HostsModel::customInstallPathLabelText},
    {"customInstallBrowseButtonText", &HostsModel::customInstallBrowseButtonText},
    {"customInstallButtonText", &HostsModel::customInstallButtonText},
    {"customInstallCheckBoxText", &HostsModel::customInstallCheckBoxText},
    {"customInstallHostsExplanationText", &HostsModel::customInstallHostsExplanationText}};

}  // namespace

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

ShownValue HostsController::shownValue(std::string_view key) const {
  if (key == "customPath") return customPath();
  if (key == "installScriptsAndPanelsChosen") return installScriptsAndPanelsChosen_;
  if (key == "installPluginForCustomInstall") return installPluginForCustomInstall_;
  if (key == "installPlugin64ForCustomInstall") return installPlugin64ForCustomInstall_;
  if (key == "scriptsOrPanelsHostsExsist") return scriptsOrPanelsHostsExsist();
  if (key == "scriptsOrPanelsHosts") {
    std::vector<ListRow> rows;
    for (const auto& host : scriptsOrPanelsHosts()) rows.push_back({.text = host->hostName()});
    return rows;
  }
  const auto* const text = std::ranges::find(modelTexts, key, &ModelText::key);
  if (text == std::end(modelTexts)) return InterfaceOwner::shownValue(key);
  return model_ != nullptr ? ((*model_).*(text->text))() : std::string();  // no model while the page is left
}

void HostsController::setShownValue(std::string_view key, const ShownValue& value) {
  const bool* const isOn = std::get_if<bool>(&value);
  if (isOn != nullptr && key == "installScriptsAndPanelsChosen") return setInstallScriptsAndPanelsChosen(*isOn);
  if (isOn != nullptr && key == "installPluginForCustomInstall") return setInstallPluginForCustomInstall(*isOn);
  if (isOn != nullptr && key == "installPlugin64ForCustomInstall") {
    installPlugin64ForCustomInstall_ = *isOn;
    return;
  }
  InterfaceOwner::setShownValue(key, value);
}

void HostsController::setTicked(std::string_view key, std::size_t row, bool isTicked) {
  if (key == "scriptsOrPanelsHosts") return;  // has no rows
  InterfaceOwner::setTicked(key, row, isTicked);
}

void HostsController::performAction(std::string_view action, const std::string& sender) {
  if (action == "buttonPressed:") return buttonPressed(sender);
  if (action == "browseButtonPressed:") return browseButtonPressed(sender);
  if (action == "checkboxClicked:") return checkboxClicked(sender);
  InterfaceOwner::performAction(action, sender);
}
