// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "shell/SetupController.h"
#include "support/TestMachine.h"

/// The wizard in a window that notes what it is told.
class SetupControllerTest : public MachineTest {
 protected:
  SetupControllerTest() {
    const fs::path resources = machine_.inBundle("Resources");
    writeFile(resources / "en.lproj/Localizable.strings", R"(
        continue = "Continue"; quit = "Quit"; go_back = "Back"; finish = "Finish"; license_blue_dot = "Licence";
        host_selection = "Applications"; running_blue_dot = "Running"; copy_files_blue_dot = "Installation";
        register_blue_dot = "End"; license_instructions = "Read this"; select_host = "Choose";
        copy_files_title = "Installing %@"; register_title = "The end"; host_running_title = "Quit it";
        thank_you = "Thanks"; install_failed = "%@ failed"; main_wnd_title_fmt = "%@ Setup"; done = "Done";
        installing_file = "Installing ";)");
    writeFile(resources / "en.lproj/license.txt", "Be nice");
    writeFile(resources / "en.lproj/register.rtf", "{\\rtf1 Enjoy}");
    writeFile(resources / "en.lproj/host_running.rtf", "{\\rtf1 Quit %HOSTNAME%}");
    writeFile(resources / "en.lproj/proceed.rtf", "{\\rtf1 Go on with %PRODUCTNAME%}");
    writeFile(machine_.payload("PHOTOSHOP_PLUGINS/Filter.plugin/Contents/x"), "x");
  }

  void start() {
    wizard_ = std::make_unique<SetupController>(platform_);
    own_ = wizard_->observe([this](std::string_view key, KeyValueObserving::Moment moment) {
      for (const char* const often :
           {"installProgress", "installStatus", "planText", "resultText", "canInstallAgain", "hasLog", "hasFolder"}) {
        if (key == often) return;
      }
      announced_ += (moment == KeyValueObserving::Moment::willChange ? "+" : "-") + std::string(key) + " ";
    });
    ASSERT_TRUE(wizard_->loadMainWindow());
    window_ = machine_.toolkit.interfaces.front();
  }
  void press(const char* action) { wizard_->performAction(action, "button"); }
  void startAtHosts() {
    start();
    press("nextView:");
  }

  /// Heading, captions with "-" for a button that cannot be pressed, and the views that can be seen.
  [[nodiscard]] std::string shown() const {
    std::string text = wizard_->mainLabelText() + " [" + (wizard_->enableBackward() ? "" : "-") +
                       wizard_->goBackwardsText() + "|" + (wizard_->enableForward() ? "" : "-") +
                       wizard_->goForwardText() + "]";
    for (const auto& [name, view] : window_->views) {
      if (name.ends_with("View") && name != "dynamicView" && name != "stepIndicatorView" && !view->isHidden) {
        text += " " + name;
      }
    }
    return text;
  }

  std::unique_ptr<SetupController> wizard_;
  KeyValueObserving::Observation own_;
  std::string announced_;
  std::shared_ptr<RecordingWindow> window_;
};
