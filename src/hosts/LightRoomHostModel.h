// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "hosts/HostModel.h"
#include "platform/Platform.h"

/// Lightroom. It has no plug-in folder: the product is one of its external editors, by presets in the user's folder.
class LightRoomHostModel : public HostModel {
 public:
  /// Installed when Lightroom's preset folder is there at this moment.
  [[nodiscard]] static std::shared_ptr<LightRoomHostModel> initWithHostName(Platform& platform, std::string name);

  [[nodiscard]] std::string hostName() const override { return hostName_; }
  [[nodiscard]] bool hostIsInstalled() const override { return hostIsInstalled_; }
  [[nodiscard]] bool hostIsSelected() const override { return hostIsSelected_; }
  void setHostIsSelected(bool selected) override { hostIsSelected_ = selected; }
  [[nodiscard]] std::string plugInPath() const override { return {}; }
  [[nodiscard]] std::string scriptsPath() const override { return {}; }
  [[nodiscard]] std::string panelsPath() const override { return {}; }
  [[nodiscard]] bool shouldInstallScripts() const override { return false; }
  [[nodiscard]] bool shouldInstallPanels() const override { return false; }
  [[nodiscard]] std::uint64_t displaySortOrder() const override { return 5000; }

  /// Text of one external-editor preset for the stand-alone application of that name, with a new identifier each time.
  [[nodiscard]] std::string templateFileTextWithAppName(std::string_view appName) const;

 private:
  LightRoomHostModel(Platform& platform, std::string name) : platform_(platform), hostName_(std::move(name)) {}

  Platform& platform_;
  bool hostIsInstalled_ = false;
  std::string hostName_;
  bool hostIsSelected_ = true;
};
