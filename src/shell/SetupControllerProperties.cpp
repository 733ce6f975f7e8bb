// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/InstallTexts.h"
#include "payload/Configuration.h"
#include "payload/InstallerTexts.h"
#include "payload/PlugInFilesModel.h"
#include "platform/OwnerTables.h"
#include "shell/SetupController.h"
#include "steps/PageResource.h"

namespace {

/// Shown where a text should be and is none: whoever writes a page sees at once what is missing.
RichText missingText() { return RichText("nil"); }

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

bool SetupController::copyInProgress() const { return !installFilesController_->enableForward(); }

RichText SetupController::resultText() const {
  if (stateController_->currentState() != stateController_->completionState()) return {};
  const InstallOutcome outcome{.report = installFilesController_->report(),
                               .hosts = servedHosts_,
                               .isSuccessful = successfulInstall(),
                               .isDenied = installFilesController_->authDenied()};
  return outcomeText(platform_, outcome, registerModel_->informativeText());
}

bool SetupController::canInstallAgain() const {
  return stateController_->currentState() == stateController_->completionState() && !successfulInstall();
}

std::string SetupController::folderToShow() const {
  std::string folder;
  for (std::size_t i = 0; folder.empty() && i < servedHosts_.size(); ++i) {
    folder = installFilesController_->report().folderOfHost(i, joinPath({servedHosts_[i]->plugInPath()}));
  }
  return folder;
}

void SetupController::showFolder() {
  if (hasFolder()) platform_.workspace.openItem(folderToShow());
}

void SetupController::showLog() {
  if (hasLog()) platform_.workspace.openItem(PlugInFilesModel(platform_).installerLogPath());
}

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
  const bool isWanted = can && !Configuration(platform_).externalEditors().empty();
  setFlag(configureLumatraExternalEditorsAllowed_, isWanted, "canConfigureLumatraExternalEditors");
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
  return formatted(localized(key), shownProductName(platform_));
}

// By name, for the window.

struct SetupController::Tables {
  using Of = SetupController;
  static constexpr PropertyEntry<Of> properties[] = {
      {"goForwardText", read<&Of::goForwardText>},
      {"goBackwardsText", read<&Of::goBackwardsText>},
      {"enableForward", read<&Of::enableForward>},
      {"enableBackward", read<&Of::enableBackward>},
      {"mainLabelText", read<&Of::mainLabelText>},
      {"informativeText", read<&Of::informativeText>},
      {"licenseText", read<&Of::licenseText>},
      {"registerText", read<&Of::registerText>},
      {"foundHosts", read<&Of::hostRows>},
      {"copyInProgress", read<&Of::copyInProgress>},
      {"installProgress", read<&Of::installProgress>},
      {"installStatus", read<&Of::installStatus>},
      {"planText", read<&Of::planText>},
      {"resultText", read<&Of::resultText>},
      {"canInstallAgain", read<&Of::canInstallAgain>},
      {"hasLog", read<&Of::hasLog>},
      {"hasFolder", read<&Of::hasFolder>},
      {"successfulInstall", read<&Of::successfulInstall>},
      {"windowTitle", read<&Of::windowTitle>},
      {"aboutMenuText", read<&Of::aboutMenuText>},
      {"quitMenuText", read<&Of::quitMenuText>},
      {"hideMenuText", read<&Of::hideMenuText>},
      {"customInstallMenuText", read<&Of::customInstallMenuText>},
      {"customInstallButtonText", read<&Of::customInstallButtonText>},
      {"configureEditorsButtonText", read<&Of::configureEditorsButtonText>},
      {"isCustomInstallAllowed", read<&Of::isCustomInstallAllowed>},
      {"isCustomInstallChosen", read<&Of::isCustomInstallChosen>},
      {"canConfigureLumatraExternalEditors", read<&Of::canConfigureLumatraExternalEditors>,
       writeFlag<&Of::setCanConfigureLumatraExternalEditors>},
      {"shouldConfigureLumatraExternalEditors", read<&Of::shouldConfigureLumatraExternalEditors>,
       writeFlag<&Of::setShouldConfigureLumatraExternalEditors>},
      {"customInstallRecommended", read<&Of::customInstallRecommended>}};

  static constexpr ActionEntry<Of> actions[] = {
      {"nextView:", [](Of& of, const std::string& /*from*/) { of.nextView(nullptr); }},
      {"previousView:", [](Of& of, const std::string& from) { of.previousView(from); }},
      {"subViewButtonPress:", [](Of& of, const std::string& from) { of.subViewButtonPress(from); }},
      {"installAgain:", [](Of& of, const std::string& /*from*/) { of.installAgain(); }},
      {"showLog:", [](Of& of, const std::string& /*from*/) { of.showLog(); }},
      {"showFolder:", [](Of& of, const std::string& /*from*/) { of.showFolder(); }},
      {"customInstallMenu:", [](Of& of, const std::string& /*from*/) { of.customInstallMenu(); }},
      {"initialView:", [](Of& of, const std::string& /*from*/) { of.initialView(); }}};
};

std::optional<ShownValue> SetupController::shownValue(std::string_view key) const {
  return readFrom(Tables::properties, key, *this);
}

bool SetupController::setShownValue(std::string_view key, const ShownValue& value) {
  return writeTo(Tables::properties, key, *this, value);
}

InterfaceOwner* SetupController::objectForKey(std::string_view key) {
  if (key == "registerModel") return registerModel_.get();
  if (key == "apertureRunModel") return apertureRunModel_.get();
  if (key == "hostsRunningModel") return hostsRunningModel_.get();
  return key == "hostsController" ? hostsController_.get() : nullptr;
}

bool SetupController::performAction(std::string_view action, const std::string& sender) {
  const auto* const entry = entryFor(Tables::actions, action);
  if (entry != nullptr && transitions_ == 0) entry->perform(*this, sender);
  return entry != nullptr;
}

bool SetupController::textShouldChange(std::string_view replacement) {
  if (replacement == "\n" && transitions_ == 0) nextView(nullptr);
  return false;
}
