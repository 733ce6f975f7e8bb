// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "foundation/Format.h"
#include "install/DestinationFolders.h"
#include "install/InstallFilesController.h"
#include "install/UpgradeRules.h"
#include "install/tasks/AnalyticsIdentifier.h"
#include "install/tasks/ApplicationRegistration.h"
#include "install/tasks/EarlierInstalls.h"
#include "install/tasks/ExternalEditors.h"
#include "install/tasks/FileErrorReporting.h"
#include "install/tasks/InstalledPathsLog.h"
#include "install/tasks/ManifestCleaning.h"

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

void InstallFilesController::unInstallForHost(const HostModel& host) { ::unInstallForHost(platform_, tools_, host); }
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
