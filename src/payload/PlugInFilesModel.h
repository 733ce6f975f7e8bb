// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"

/// Paths of the payload in the installer's bundle and of destinations outside hosts. Stateless. All results are
/// absolute paths, which need not exist.
class PlugInFilesModel {
 public:
  explicit PlugInFilesModel(Platform& platform) : platform_(platform) {}

  /// Whether the user's first language has this code, without regard to case.
  [[nodiscard]] bool IsCurrentLocale(std::string_view languageCode) const;

  // Payload, in the bundle:
  [[nodiscard]] std::string getSharedSupportPathInBundleWithSuffix(std::string_view name) const;
  [[nodiscard]] std::string getPlugInDirInBundle() const;
  [[nodiscard]] std::string getAutoLayerDirInBundle() const;
  [[nodiscard]] std::string getStandAloneAppsDirInBundle() const;

  /// The paths of the folder's direct entries, hidden ones included; none when it cannot be read.
  [[nodiscard]] std::vector<std::string> getFullPathsOfFilesInBundle(const std::string& folder) const;
  [[nodiscard]] std::vector<std::string> getFullPathsOfPlugInsInBundle() const;

  // Destinations:
  [[nodiscard]] std::string companyAppSupportPath() const;
  [[nodiscard]] std::string productAppSupportPath() const;
  [[nodiscard]] std::string appSupportPathForProduct(std::string_view product) const;
  [[nodiscard]] std::string productUserAppSupportPath() const;
  [[nodiscard]] std::string userAppSupportPathForProduct(std::string_view product) const;

  /// The folder that the product keeps its settings in: below the "User Folder" of its own preferences when that is
  /// there, else in the user's Application Support. The only function that reads the disk.
  [[nodiscard]] std::string userSettingsPath() const;

  [[nodiscard]] std::string settingsInstallPath() const;
  [[nodiscard]] std::string standAloneAppsInstallPath() const;
  [[nodiscard]] std::string installerLogPath() const;
  [[nodiscard]] std::string lightRoomPresetDir() const;
  [[nodiscard]] std::string apertureUserPluginDir() const;

 private:
  Platform& platform_;
};
