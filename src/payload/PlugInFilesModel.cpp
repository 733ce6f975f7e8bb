// SPDX-License-Identifier: Apache-2.0

#include "payload/PlugInFilesModel.h"

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "foundation/Text.h"
#include "payload/InstallerTexts.h"
#include "settings/BundleUserDefaults.h"

bool PlugInFilesModel::IsCurrentLocale(std::string_view languageCode) const {
  const auto languages = platform_.user.preferredLanguages();
  return !languages.empty() && equalIgnoringCase(languages.front(), languageCode);
}

std::string PlugInFilesModel::getSharedSupportPathInBundleWithSuffix(std::string_view name) const {
  return joinPath(platform_.bundles.mainBundle().sharedSupportPath(), name);
}

std::string PlugInFilesModel::getPlugInDirInBundle() const { return getSharedSupportPathInBundleWithSuffix("PlugIn"); }

std::string PlugInFilesModel::getAutoLayerDirInBundle() const {
  return getSharedSupportPathInBundleWithSuffix("AutoLayer");
}

std::string PlugInFilesModel::getStandAloneAppsDirInBundle() const {
  return getSharedSupportPathInBundleWithSuffix("Standalone");
}

std::vector<std::string> PlugInFilesModel::getFullPathsOfFilesInBundle(const std::string& folder) const {
  std::vector<std::string> paths = platform_.files.contentsOfDirectory(folder).valueOr({});
  for (std::string& name : paths) name = joinPath(folder, name);
  return paths;
}

std::vector<std::string> PlugInFilesModel::getFullPathsOfPlugInsInBundle() const {
  return getFullPathsOfFilesInBundle(getPlugInDirInBundle());
}

std::string PlugInFilesModel::companyAppSupportPath() const {
  return joinPath(platform_.folders.localApplicationSupport(), companyName(platform_));
}

std::string PlugInFilesModel::productAppSupportPath() const { return appSupportPathForProduct(productName(platform_)); }

std::string PlugInFilesModel::appSupportPathForProduct(std::string_view product) const {
  return joinPath(companyAppSupportPath(), product);
}

std::string PlugInFilesModel::productUserAppSupportPath() const {
  return userAppSupportPathForProduct(productName(platform_));
}

std::string PlugInFilesModel::userAppSupportPathForProduct(std::string_view product) const {
  return joinPath({platform_.folders.userApplicationSupport(), companyName(platform_), product});
}

std::string PlugInFilesModel::userSettingsPath() const {
  const auto settings =
      BundleUserDefaults::initWithPersistentDomainName(platform_, productPreferencesDomain(platform_));
  const std::string userFolder = settings.objectForKey("User Folder").text();
  const std::string chosen = joinPath({userFolder, companyName(platform_), productName(platform_)});
  return platform_.files.exists(chosen) ? chosen : productUserAppSupportPath();
}

std::string PlugInFilesModel::settingsInstallPath() const { return productAppSupportPath(); }

std::string PlugInFilesModel::standAloneAppsInstallPath() const { return platform_.folders.localApplications(); }

std::string PlugInFilesModel::installerLogPath() const {
  return joinPath(companyAppSupportPath(), formatted("%@ Installer.log", productName(platform_)));
}

std::string PlugInFilesModel::lightRoomPresetDir() const {
  return joinPath({platform_.folders.userApplicationSupport(), "Adobe", "Lightroom", "External Editor Presets"});
}

std::string PlugInFilesModel::apertureUserPluginDir() const {
  return joinPath({platform_.folders.userApplicationSupport(), "Aperture", "Plug-Ins"});
}
