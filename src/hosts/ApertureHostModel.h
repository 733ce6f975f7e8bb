// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "hosts/HostModel.h"
#include "platform/Platform.h"

/// Aperture. Its plug-ins lie in the user's own folder for it. Discovery only makes one where the
/// maker asks for it. Nothing is copied for it; the running-host check knows the kind.
class ApertureHostModel : public HostModel {
 public:
  /// Installed when the folder that holds Aperture's plug-in folder is there at this moment.
  [[nodiscard]] static std::shared_ptr<ApertureHostModel> initWithHostName(Platform& platform, std::string name);

  [[nodiscard]] std::string hostName() const override { return hostName_; }
  [[nodiscard]] bool hostIsInstalled() const override { return hostIsInstalled_; }
  [[nodiscard]] bool hostIsSelected() const override { return hostIsSelected_; }
  void setHostIsSelected(bool selected) override { hostIsSelected_ = selected; }
  [[nodiscard]] std::string appPath() const override { return "/Applications/Aperture"; }
  [[nodiscard]] std::string plugInPath() const override { return {}; }
  [[nodiscard]] std::string scriptsPath() const override { return {}; }
  [[nodiscard]] std::string panelsPath() const override { return {}; }
  [[nodiscard]] bool shouldInstallScripts() const override { return false; }
  [[nodiscard]] bool shouldInstallPanels() const override { return false; }
  [[nodiscard]] std::uint64_t displaySortOrder() const override { return 5000; }

 private:
  ApertureHostModel(std::string name, bool isInstalled) : hostIsInstalled_(isInstalled), hostName_(std::move(name)) {}

  bool hostIsInstalled_;
  std::string hostName_;
  bool hostIsSelected_ = true;
};
