// SPDX-License-Identifier: Apache-2.0

#include "shell/SetupViewModel.h"

NavigationCaptions::NavigationCaptions(const Bundle& bundle)
    : continue_string(bundle.localizedString("continue", "can't find", "Localizable")),
      quit_string(bundle.localizedString("quit")),
      install_again(bundle.localizedString("install_again")),
      go_back(bundle.localizedString("go_back")),
      finish_string(bundle.localizedString("finish")) {}

std::string SetupViewModel::goForwardText() const {
  const bool isLast =
      stateController_ != nullptr && stateController_->currentState() == stateController_->completionState();
  return isLast ? captions_.finish_string : captions_.continue_string;
}

std::string SetupViewModel::goBackwardsText() const {
  const bool isFirst = stateController_ != nullptr && stateController_->currentState() == step::license;
  return isFirst ? captions_.quit_string : captions_.go_back;
}
