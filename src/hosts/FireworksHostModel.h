// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "hosts/HostModel.h"
#include "platform/Platform.h"

/// Fireworks, which has a plug-in folder only. Discovery makes none.
class FireworksHostModel : public HostModel {
 public:
  [[nodiscard]] static std::shared_ptr<FireworksHostModel> initWithHostName(Platform& platform, std::string name);

  [[nodiscard]] std::string hostName() const override { return hostName_; }
  /// Whether the plug-in folder is there now.
  [[nodiscard]] bool hostIsInstalled() const override;
  [[nodiscard]] bool hostIs64Bit() const { return false; }
  [[nodiscard]] std::string plugInPath() const override { return plugInPath_; }
  [[nodiscard]] std::string scriptsPath() const override { return scriptsPath_; }
  [[nodiscard]] std::string panelsPath() const override { return panelsPath_; }
  [[nodiscard]] bool shouldInstallScripts() const override { return shouldInstallScripts_; }
  [[nodiscard]] bool shouldInstallPanels() const override { return shouldInstallPanels_; }
  [[nodiscard]] bool shouldInstallPlugIns() const override { return shouldInstallPlugIns_; }

  void setPlugInPath(std::string path) { plugInPath_ = std::move(path); }
  void setPanelsPath(std::string path) { panelsPath_ = std::move(path); }
  void setShouldInstallPlugIns(bool should) { shouldInstallPlugIns_ = should; }
  // Fireworks takes neither scripts nor panels, and its scripts folder is not for others to choose: these do nothing.
  void setScriptsPath(const std::string& /*path*/) {}
  void setShouldInstallScripts(bool /*should*/) {}
  void setShouldInstallPanels(bool /*should*/) {}

  [[nodiscard]] Value valueForKey(std::string_view key) const override;

 protected:
  [[nodiscard]] bool answers(std::string_view key) const override {
    return key != "hostIsSelected" && key != "displaySortOrder" && key != "appPath";
  }

 private:
  explicit FireworksHostModel(Platform& platform) : platform_(platform) {}

  void initPaths(const std::string& name);

  Platform& platform_;
  std::string plugInPath_;
  bool shouldInstallScripts_ = false;
  bool shouldInstallPanels_ = false;
  bool shouldInstallPlugIns_ = true;
  std::string scriptsPath_;
  std::string panelsPath_;
  std::string hostName_;
};
