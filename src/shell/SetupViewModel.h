// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "platform/Bundle.h"
#include "shell/InstallStateController.h"

/// Captions of the wizard's two navigation buttons.
struct NavigationCaptions {
  explicit NavigationCaptions(const Bundle& bundle);

  std::string continue_string;
  std::string quit_string;
  std::string install_again;  ///< not in use; makers' tables have it
  std::string go_back;
  std::string finish_string;
};

/// Which captions the state calls for.
class SetupViewModel {
 public:
  explicit SetupViewModel(const Bundle& bundle) : captions_(bundle) {}

  void setStateController(std::shared_ptr<InstallStateController> controller) {
    stateController_ = std::move(controller);
  }

  [[nodiscard]] std::string goForwardText() const;
  [[nodiscard]] std::string goBackwardsText() const;

  /// Never shown.
  [[nodiscard]] static std::string mainLabelText() { return "bogus"; }
  // Never asked: the pages say whether the buttons are enabled.
  [[nodiscard]] static bool isForwardEnabled() { return false; }
  [[nodiscard]] static bool isBackEnabled() { return false; }

 private:
  NavigationCaptions captions_;
  std::shared_ptr<InstallStateController> stateController_;
};
