// SPDX-License-Identifier: Apache-2.0

#include "steps/LicenseController.h"

bool LicenseController::canProceed(std::int32_t direction) {
  if (direction < 0 || agreed_) return true;
  const Bundle& bundle = platform_.bundles.mainBundle();
  const AlertAnswer answer =
      platform_.toolkit.runAlertPanel({.title = bundle.localizedString("agree_message"),
                                       .message = bundle.localizedString("agree_information"),
                                       .defaultButton = bundle.localizedString("agree_button"),
                                       .alternateButton = bundle.localizedString("disagree_button"),
                                       .style = Alert::Style::informational});
  agreed_ = answer == AlertAnswer::defaultButton;
  return agreed_;
}
