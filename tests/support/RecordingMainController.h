// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>

#include "contract/SetupMainController.h"
#include "hosts/HostModel.h"

/// A wizard that notes what a page announces to it, and offers the hosts that a test gives it.
class RecordingMainController : public SetupMainController {
 public:
  HostList found;
  HostList selected;
  std::string announced;  ///< "+key" for will-change, "-key" for did-change, "next" for the next page
  std::function<void()> onNextView = [] {};
  std::function<void()> onProgress = [] {
  };  ///< the install's progress is announced too often to be told by `announced`
  bool isInstalled = false;
  bool isAllowed = false;
  bool isChosen = false;
  bool isRecommended = true;

  [[nodiscard]] HostList foundHosts() const override { return found; }
  [[nodiscard]] HostList selectedHosts() const override { return selected; }
  [[nodiscard]] bool shouldConfigureLumatraExternalEditors() const override { return true; }
  [[nodiscard]] bool successfulInstall() const override { return isInstalled; }
  [[nodiscard]] bool isCustomInstallAllowed() const override { return isAllowed; }
  void setIsCustomInstallAllowed(bool allowed) override { isAllowed = allowed; }
  [[nodiscard]] bool isCustomInstallChosen() const override { return isChosen; }
  void setIsCustomInstallChosen(bool chosen) override { isChosen = chosen; }
  [[nodiscard]] bool customInstallRecommended() const override { return isRecommended; }
  void customHostAdded(const std::shared_ptr<HostModel>& host) override { found.push_back(host); }
  void customHostRemoved(const std::shared_ptr<HostModel>& host) override { std::erase(found, host); }
  void nextView(SetupStepController* /*sender*/) override {
    announced += "next ";
    onNextView();
  }

 private:
  Observation own_ = observe([this](std::string_view key, Moment moment) {
    if (key == "installProgress") return onProgress();
    if (key == "installStatus") return;
    announced += (moment == Moment::willChange ? "+" : "-") + std::string(key) + " ";
  });
};
