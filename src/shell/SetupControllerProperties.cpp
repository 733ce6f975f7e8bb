#include <algorithm>
#include <functional>
#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "hosts/PhotoshopHostModel.h"
#include "payload/InstallerTexts.h"
#include "shell/SetupController.h"
#include "steps/PageResource.h"

namespace {

/// Shown where a text should be and is none: whoever writes a page sees at once what is missing.
RichText missingText() { return RichText("nil"); }

bool flagIn(const ShownValue& value, std::string_view key) {
  const auto* const flag = std::get_if<bool>(&value);
  if (flag == nullptr) throw UnknownKey(key);
  return *flag;
}

/// The folder that the host's application lies in, which need not be there.
std::string applicationFolderOf(const HostModel& host) {
  const auto* const photoshop = dynamic_cast<const PhotoshopHostModel*>(&host);
  return photoshop == nullptr ? joinPath("/Applications", host.hostName()) : photoshop->appPath();
}

}  // namespace

void SetupController::setGoForwardText(std::string text) {
  willChangeValueForKey("goForwardText");
  goForwardText_ = std::move(text);
  didChangeValueForKey("goForwardText");
}

void SetupController::setGoBackwardsText(std::string text) {
  willChangeValueForKey("goBackwardsText");
  goBackwardsText_ = std::move(text);
  didChangeValueForKey("goBackwardsText");
}

bool SetupController::enableForward() const {
  const SetupStepController* const current = currentController();
  return current != nullptr && current->enableForward();
}

bool SetupController::enableBackward() const {
  const SetupStepController* const current = currentController();
  return current != nullptr && current->enableBackward();
}

std::string SetupController::mainLabelText() const {
  const auto model = getModelForStep(stateController_->currentState());
  if (model == nullptr) return "???";
  try {
    return model->mainLabelText().value_or("nil!!!");
  } catch (const Exception&) {
    return "No text in your setup step model???";
  }
}

RichText SetupController::informativeText() const {
  const auto model = getModelForStep(stateController_->currentState());
  return model == nullptr ? RichText() : model->informativeText();
}

RichText SetupController::licenseText() const {
  const auto text = licenseModel_->licenseText();
  return text ? RichText(*text) : missingText();
}

RichText SetupController::registerText() const {
  try {
    return richTextResource(platform_, "register");
  } catch (const Exception& exception) {
    platform_.log.write(formatted("%@", exception.what()));
    return missingText();
  }
}

HostList SetupController::foundHosts() const { return hostsModel_->foundHosts(); }

HostList SetupController::selectedHosts() const { return filteredHosts(foundHosts(), "hostIsSelected == YES"); }

bool SetupController::copyInProgress() const { return !installFilesController_->enableForward(); }

double SetupController::installProgress() const { return installFilesController_->progress(); }

bool SetupController::successfulInstall() const { return installFilesController_->successfulInstall(); }

void SetupController::setFlag(bool& flag, bool value, std::string_view key) {
  willChangeValueForKey(key);
  flag = value;
  didChangeValueForKey(key);
}

void SetupController::setIsCustomInstallAllowed(bool allowed) {
  setFlag(customInstallAllowed_, allowed, "isCustomInstallAllowed");
}

void SetupController::setIsCustomInstallChosen(bool chosen) {
  setFlag(customInstallChosen_, chosen, "isCustomInstallChosen");
}

void SetupController::setCanConfigureLumatraExternalEditors(bool can) {
  setFlag(configureLumatraExternalEditorsAllowed_, can, "canConfigureLumatraExternalEditors");
}

void SetupController::setShouldConfigureLumatraExternalEditors(bool should) {
  setFlag(configureLumatraExternalEditorsShould_, should, "shouldConfigureLumatraExternalEditors");
}

void SetupController::setCustomInstallRecommended(bool recommended) {
  setFlag(isCustomInstallRecommended_, recommended, "customInstallRecommended");
}

std::string SetupController::localized(std::string_view key) const {
  return platform_.bundles.mainBundle().localizedString(key);
}

std::string SetupController::productFormat(std::string_view key) const {
  return formatted(localized(key), productName(platform_));
}

// By name, for the window.

ShownValue SetupController::shownValue(std::string_view key) const {
  using Property = std::function<ShownValue(const SetupController&)>;
  static const std::map<std::string_view, Property> properties = {
      {"goForwardText", [](const SetupController& of) { return of.goForwardText(); }},
      {"goBackwardsText", [](const SetupController& of) { return of.goBackwardsText(); }},
      {"enableForward", [](const SetupController& of) { return of.enableForward(); }},
      {"enableBackward", [](const SetupController& of) { return of.enableBackward(); }},
      {"mainLabelText", [](const SetupController& of) { return of.mainLabelText(); }},
      {"informativeText", [](const SetupController& of) { return of.informativeText(); }},
      {"licenseText", [](const SetupController& of) { return of.licenseText(); }},
      {"registerText", [](const SetupController& of) { return of.registerText(); }},
      {"foundHosts", [](const SetupController& of) { return of.hostRows(); }},
      {"copyInProgress", [](const SetupController& of) { return of.copyInProgress(); }},
      {"installProgress", [](const SetupController& of) { return of.installProgress(); }},
      {"successfulInstall", [](const SetupController& of) { return of.successfulInstall(); }},
      {"windowTitle", [](const SetupController& of) { return of.windowTitle(); }},
      {"aboutMenuText", [](const SetupController& of) { return of.aboutMenuText(); }},
      {"quitMenuText", [](const SetupController& of) { return of.quitMenuText(); }},
      {"hideMenuText", [](const SetupController& of) { return of.hideMenuText(); }},
      {"customInstallMenuText", [](const SetupController& of) { return of.customInstallMenuText(); }},
      {"customInstallButtonText", [](const SetupController& of) { return of.customInstallButtonText(); }},
      {"configureEditorsButtonText", [](const SetupController& of) { return of.configureEditorsButtonText(); }},
      {"isCustomInstallAllowed", [](const SetupController& of) { return of.isCustomInstallAllowed(); }},
      {"isCustomInstallChosen", [](const SetupController& of) { return of.isCustomInstallChosen(); }},
      {"canConfigureLumatraExternalEditors",
       [](const SetupController& of) { return of.canConfigureLumatraExternalEditors(); }},
      {"shouldConfigureLumatraExternalEditors",
       [](const SetupController& of) { return of.shouldConfigureLumatraExternalEditors(); }},
      {"customInstallRecommended", [](const SetupController& of) { return of.customInstallRecommended(); }}};
  const auto found = properties.find(key);
  if (found == properties.end()) throw UnknownKey(key);
  return found->second(*this);
}

void SetupController::setShownValue(std::string_view key, const ShownValue& value) {
  if (key == "shouldConfigureLumatraExternalEditors") {
    setShouldConfigureLumatraExternalEditors(flagIn(value, key));
  } else if (key == "canConfigureLumatraExternalEditors") {
    setCanConfigureLumatraExternalEditors(flagIn(value, key));
  } else {
    throw UnknownKey(key);
  }
}

void SetupController::setTicked(std::string_view key, std::size_t row, bool isTicked) {
  if (key != "foundHosts") throw UnknownKey(key);
  const HostList hosts = foundHosts();
  if (row < hosts.size() && transitions_ == 0) hosts[row]->setHostIsSelected(isTicked);
}

InterfaceOwner* SetupController::objectForKey(std::string_view key) {
  if (key == "registerModel") return registerModel_.get();
  if (key == "apertureRunModel") return apertureRunModel_.get();
  if (key == "hostsRunningModel") return hostsRunningModel_.get();
  if (key == "hostsController") return hostsController_.get();
  throw UnknownKey(key);
}

void SetupController::performAction(std::string_view action, const std::string& sender) {
  using Action = std::function<void(SetupController&, const std::string& sender)>;
  static const std::map<std::string_view, Action> actions = {
      {"nextView:", [](SetupController& of, const std::string&) { of.nextView(nullptr); }},
      {"previousView:", [](SetupController& of, const std::string& from) { of.previousView(from); }},
      {"subViewButtonPress:", [](SetupController& of, const std::string& from) { of.subViewButtonPress(from); }},
      {"customInstallMenu:", [](SetupController& of, const std::string&) { of.customInstallMenu(); }},
      {"initialView:", [](SetupController& of, const std::string&) { of.initialView(); }}};
  const auto found = actions.find(action);
  if (found == actions.end()) throw UnknownKey(action);
  if (transitions_ == 0) found->second(*this, sender);
}

bool SetupController::textShouldChange(std::string_view replacement) {
  if (replacement == "\n" && transitions_ == 0) nextView(nullptr);
  return false;
}

std::vector<ListRow> SetupController::hostRows() const {
  std::vector<ListRow> rows;
  for (const auto& host : foundHosts()) {
    rows.push_back({.text = host->hostName(),
                    .detail = joinPath({host->plugInPath()}),
                    .isTicked = host->hostIsSelected(),
                    .picture = iconOf(*host)});
  }
  return rows;
}

Picture SetupController::iconOf(const HostModel& host) const {
  const std::string folder = applicationFolderOf(host);
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
