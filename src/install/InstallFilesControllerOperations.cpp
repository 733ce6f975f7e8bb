// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "hosts/LightRoomHostModel.h"
#include "install/DestinationFolders.h"
#include "install/InstallFilesController.h"
#include "install/UpgradeRules.h"
#include "install/tasks/AnalyticsIdentifier.h"
#include "install/tasks/ApplicationRegistration.h"
#include "install/tasks/EarlierInstalls.h"
#include "install/tasks/ExternalEditors.h"
#include "install/tasks/FileErrorReporting.h"
#include "install/tasks/InstalledPathsLog.h"
#include "install/tasks/LightroomPreset.h"
#include "install/tasks/ManifestCleaning.h"
#include "payload/Configuration.h"
#include "payload/InstallerTexts.h"
#include "payload/PlugInFilesModel.h"

// The operations that are done elsewhere.

void InstallFilesController::ensureDirExists(const std::string& path) { ::ensureDirExists(platform_, tools_, path); }

bool InstallFilesController::isFileOkToInstallByBundleVersion(const std::string& source,
                                                              const std::string& alreadyThere) const {
  return ::isFileOkToInstallByBundleVersion(platform_, source, alreadyThere);
}

bool InstallFilesController::isFileOkToInstallByModificationTime(const std::string& source,
                                                                 const std::string& alreadyThere) const {
  return ::isFileOkToInstallByModificationTime(platform_, source, alreadyThere);
}

void InstallFilesController::setAttributesRecursive(const std::string& path, const OwnershipAndMode& attributes) {
  ::setAttributesRecursive(platform_, path, attributes);
}

void InstallFilesController::configureLumatraExternalEditors() {
  // Without a window nobody knows the found hosts here, and the list has no Photoshop.
  const HostList found = mainController_ == nullptr ? HostList{} : mainController_->foundHosts();
  const auto list = ::configureLumatraExternalEditors(platform_, tools_, found);
  if (!list) return;
  // In the log, the list stands before what belongs to a host.
  const auto firstOfHost = std::ranges::find_if(report_.hostsOfPaths, [](std::size_t host) { return host != 0; });
  const auto position = firstOfHost - report_.hostsOfPaths.begin();
  report_.installedPaths.insert(report_.installedPaths.begin() + position, *list);
  report_.hostsOfPaths.insert(firstOfHost, 0);
}

void InstallFilesController::cleanManifests() { ::cleanManifests(platform_); }
void InstallFilesController::runLsregister() { ::runLsregister(tools_); }

void InstallFilesController::logInstalledPaths() {
  report_.isLogWritten = ::logInstalledPaths(platform_, tools_, report_.installedPaths);
}

void InstallFilesController::registerInstalledApplication(const std::string& path) {
  registerApplication(platform_, path);
  releaseFromQuarantine(tools_, path);
}

void InstallFilesController::runMakersTasks(const HostList& hosts) {
  const Configuration configuration(platform_);
  for (std::size_t i = 0; i < hosts.size() && !authDenied(); ++i) {
    if (configuration.removesEarlierInstalls() && !fileOpErrorOccurred_) removeEarlierInstalls(*hosts[i]);
    const auto* const lightroom = dynamic_cast<const LightRoomHostModel*>(hosts[i].get());
    if (lightroom == nullptr || configuration.lightroomPreset().empty()) continue;
    const auto preset = installLightroomPreset(platform_, tools_, *lightroom, configuration.lightroomPreset());
    if (!preset || std::ranges::find(report_.installedPaths, *preset) != report_.installedPaths.end()) continue;
    report_.installedPaths.push_back(*preset);
    report_.hostsOfPaths.push_back(i + 1);
  }
  if (!configuration.hasIdentifierFile() || companyName(platform_).empty() || authDenied()) return;
  ensureDirExists(PlugInFilesModel(platform_).companyAppSupportPath());
  installAnalytics();
}

void InstallFilesController::removeEarlierInstalls(const HostModel& host) {
  // The new version is in its place already: what has just been installed may have the name of what was there before.
  const auto isInstalled = [&](const std::string& path) {
    return std::ranges::any_of(installedPaths(), [&](const std::string& installed) {
      return isAtOrBelow(path, installed) || isAtOrBelow(installed, path);
    });
  };
  if (!joinPath({host.plugInPath()}).empty()) ::unInstallForHost(platform_, tools_, host, isInstalled);
}

void InstallFilesController::unInstallForHost(const HostModel& host) {
  ::unInstallForHost(platform_, tools_, host, [](const std::string& /*path*/) { return false; });
}
void InstallFilesController::installAnalytics() { ::installAnalytics(platform_, tools_); }

bool InstallFilesController::fileManager(const FileSystem& /*manager*/,
                                         const Value::Dictionary& shouldProceedAfterError) {
  const std::string error = entryOf(shouldProceedAfterError, "Error").text();
  const std::string path = entryOf(shouldProceedAfterError, "Path").text();
  fileOpErrorOccurred_ = true;
  report_.failures.push_back({path, errorWithText(error)});
  // The two blanks are the message that support staff look for.
  platform_.log.write(formatted("File  operation error: %@ with file: %@", error, path));
  Alert alert = fileErrorAlert(platform_, error, path);
  alert.alternateButton = localized("install_error_stop");
  return platform_.toolkit.runAlertPanel(alert) == AlertAnswer::defaultButton;
}

void InstallFilesController::showFileErrorUI(const std::string& path) { itemFailed(path, errorWithText("")); }
