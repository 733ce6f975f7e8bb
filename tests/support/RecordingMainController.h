#pragma once

#include <functional>
#include <string>

#include "hosts/HostModel.h"
#include "shell/contract/SetupMainController.h"

/// A wizard that notes what a page announces to it, and offers the hosts that a test gives it.
class RecordingMainController : public SetupMainController {
 public:
  HostList found;
  HostList selected;
  std::string announced;  ///< "+key" for will-change, "-key" for did-change, "next" for the next page
  std::function<void()> onNextView = [] {};

  [[nodiscard]] HostList foundHosts() const override { return found; }
  [[nodiscard]] HostList selectedHosts() const override { return selected; }
  [[nodiscard]] bool shouldConfigureLumatraExternalEditors() const override { return true; }
  void nextView(SetupStepController* /*sender*/) override {
    announced += "next ";
    onNextView();
  }

 private:
  Observation own_ = observe([this](std::string_view key, Moment moment) {
    announced += (moment == Moment::willChange ? "+" : "-") + std::string(key) + " ";
  });
};
