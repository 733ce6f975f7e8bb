// SPDX-License-Identifier: Apache-2.0

#include "kit/WindowNames.h"

#include <algorithm>

namespace {

using Names = std::string_view;

constexpr Names mainObjects[] = {
    "mainWindow", "dynamicView",      "stepIndicatorView", "licenseView",     "hostsView",
    "rtfView",    "installFilesView", "registerView",      "apertureRunView", "foundHostsController"};
constexpr Names mainKeys[] = {"goForwardText",
                              "goBackwardsText",
                              "enableForward",
                              "enableBackward",
                              "mainLabelText",
                              "informativeText",
                              "licenseText",
                              "registerText",
                              "foundHosts",
                              "copyInProgress",
                              "installProgress",
                              "installStatus",
                              "planText",
                              "resultText",
                              "canInstallAgain",
                              "hasLog",
                              "hasFolder",
                              "successfulInstall",
                              "windowTitle",
                              "aboutMenuText",
                              "quitMenuText",
                              "hideMenuText",
                              "customInstallMenuText",
                              "customInstallButtonText",
                              "configureEditorsButtonText",
                              "isCustomInstallAllowed",
                              "isCustomInstallChosen",
                              "canConfigureLumatraExternalEditors",
                              "shouldConfigureLumatraExternalEditors",
                              "customInstallRecommended",
                              "registerModel.backgroundImage",
                              "apertureRunModel.backgroundImage",
                              "hostsRunningModel.informativeText"};
constexpr Names mainActions[] = {"nextView:", "previousView:", "subViewButtonPress:", "installAgain:",
                                 "showLog:",  "showFolder:",   "customInstallMenu:",  "initialView:"};

constexpr Names customObjects[] = {"customInstallView"};
constexpr Names customKeys[] = {"customPath",
                                "installScriptsAndPanelsChosen",
                                "installPluginForCustomInstall",
                                "installPlugin64ForCustomInstall",
                                "scriptsOrPanelsHosts",
                                "scriptsOrPanelsHostsExsist",
                                "customInstallPathLabelText",
                                "customInstallBrowseButtonText",
                                "customInstallButtonText",
                                "customInstallCheckBoxText",
                                "customInstallHostsExplanationText"};
constexpr Names customActions[] = {"buttonPressed:", "browseButtonPressed:", "checkboxClicked:"};

constexpr Names rowObjects[] = {"stepIndicatorView", "indicator", "label"};

constexpr DescriptionNames all[] = {{"MainWindow.ui", mainObjects, mainKeys, mainActions},
                                    {"CustomInstall.ui", customObjects, customKeys, customActions},
                                    {"Step Indicator.ui", rowObjects, {}, {}}};

}  // namespace

std::span<const DescriptionNames> descriptions() { return all; }

bool hasKey(const DescriptionNames& names, std::string_view key) {
  // The main window may show what the custom screen shows.
  constexpr std::string_view customScreen = "hostsController.";
  const bool isOther = names.file == all[0].file && key.starts_with(customScreen);
  const std::span<const Names> keys = isOther ? customKeys : names.keys;
  return std::ranges::find(keys, isOther ? key.substr(customScreen.size()) : key) != keys.end();
}
