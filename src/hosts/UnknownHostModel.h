// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "hosts/HostModel.h"
#include "platform/Platform.h"

/// A folder that the user picked: always there, unselected at first, its folders and choices settable.
class UnknownHostModel : public HostModel {
 public:
  [[nodiscard]] static std::shared_ptr<UnknownHostModel> initWithPlugInPath(Platform& platform, std::string path);

  [[nodiscard]] std::string hostName() const override;
  [[nodiscard]] bool hostIsInstalled() const override { return true; }
  [[nodiscard]] bool hostIsSelected() const override { return hostIsSelected_; }
  [[nodiscard]] std::string plugInPath() const override { return plugInPath_; }
  [[nodiscard]] std::string scriptsPath() const override { return scriptsPath_; }
  [[nodiscard]] std::string panelsPath() const override { return panelsPath_; }
  [[nodiscard]] bool shouldInstallScripts() const override { return shouldInstallScripts_; }
  [[nodiscard]] bool shouldInstallPanels() const override { return shouldInstallPanels_; }
  [[nodiscard]] bool shouldInstallPlugIns() const override { return shouldInstallPlugIns_; }
  [[nodiscard]] std::uint64_t displaySortOrder() const override { return 6000; }

  void setHostIsSelected(bool selected) override { hostIsSelected_ = selected; }
  void setPlugInPath(std::string path) { plugInPath_ = std::move(path); }
  void setScriptsPath(std::string path) { scriptsPath_ = std::move(path); }
  void setPanelsPath(std::string path) { panelsPath_ = std::move(path); }
  void setShouldInstallScripts(bool should) { shouldInstallScripts_ = should; }
  void setShouldInstallPanels(bool should) { shouldInstallPanels_ = should; }
  void setShouldInstallPlugIns(bool should) { shouldInstallPlugIns_ = should; }

 protected:
  [[nodiscard]] bool answers(std::string_view key) const override { return key != "appPath"; }

 private:
  UnknownHostModel(Platform& platform, std::string path) : platform_(platform), plugInPath_(std::move(path)) {}

  Platform& platform_;
  std::string plugInPath_;
  bool shouldInstallScripts_ = false;
  bool shouldInstallPanels_ = false;
  bool shouldInstallPlugIns_ = true;
  std::string scriptsPath_;
  std::string panelsPath_;
  bool hostIsSelected_ = false;
};
