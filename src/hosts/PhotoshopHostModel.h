// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "hosts/HostModel.h"
#include "platform/Platform.h"

struct PathsFile;

/// Photoshop or Photoshop Elements. Its paths are decided when it is made and never change.
class PhotoshopHostModel : public HostModel {
 public:
  /// From a display name: versions that keep a settings folder lie in fixed places; any
  /// other is looked up in the Paths file of that name in the user's preferences.
  [[nodiscard]] static std::shared_ptr<PhotoshopHostModel> initWithHostName(Platform& platform, std::string name);

  /// From a Paths file, which is named after the host. One that cannot be opened is tried four times in one and a half
  /// seconds; the host then counts as not installed.
  [[nodiscard]] static std::shared_ptr<PhotoshopHostModel> initWithPathsFilePath(Platform& platform,
                                                                                 const std::string& path);

  [[nodiscard]] std::string hostName() const override { return hostName_; }
  [[nodiscard]] bool hostIsInstalled() const override { return hostIsInstalled_; }
  [[nodiscard]] bool hostIsSelected() const override { return hostIsSelected_; }
  void setHostIsSelected(bool selected) override { hostIsSelected_ = selected; }
  [[nodiscard]] std::string appPath() const override { return appPath_.value_or(""); }
  [[nodiscard]] std::string plugInPath() const override { return plugInPath_; }
  [[nodiscard]] std::string scriptsPath() const override { return scriptsPath_; }
  [[nodiscard]] std::string panelsPath() const override { return panelsPath_; }
  [[nodiscard]] bool shouldInstallScripts() const override;
  [[nodiscard]] bool shouldInstallPanels() const override;

  /// 1000, or 3000 for Elements, minus the version in 32-bit arithmetic: a year wraps round to a very large number,
  /// which sorts such hosts behind every other kind, newest first. The order of the host list rests on it.
  [[nodiscard]] std::uint64_t displaySortOrder() const override;

  /// Version in the display name: "CS6" is 6, "CC 2019" is 2019, plain "CC" is 7, "Elements 11" is 11; 0 for none.
  [[nodiscard]] std::uint32_t version() const;

  /// What follows the first full stop of a "CC" version: 5 for "CC 2015.5", else 0.
  [[nodiscard]] std::uint32_t minorVersion() const;

  /// version(), but 0 for Elements.
  [[nodiscard]] std::uint32_t photoshopVersionFromDisplayName() const;

  [[nodiscard]] bool isElements() const;

  /// The two are the same test on purpose: either numbering is compared as it stands.
  [[nodiscard]] bool hostIsAtLeastVersionCS(std::uint32_t n) const { return version() >= n; }
  [[nodiscard]] bool hostIsAtLeastVersionElements(std::uint32_t n) const { return version() >= n; }

 private:
  PhotoshopHostModel(Platform& platform, std::string name) : platform_(platform), hostName_(std::move(name)) {}

  void initPathsFromHostName(const std::string& name);
  void initPathsFromPathFile(const std::string& path);
  [[nodiscard]] std::optional<std::string> readPathsFile(const std::string& path) const;
  void takeFolders(const PathsFile& file);
  [[nodiscard]] bool appFolderHoldsApplication() const;

  Platform& platform_;
  std::optional<std::string> appPath_;
  std::string plugInPath_;
  std::string scriptsPath_;
  std::string hostName_;
  std::string panelsPath_;
  bool hostIsInstalled_ = false;
  bool hostIsSelected_ = true;
};
