// SPDX-License-Identifier: Apache-2.0

#include "shell/Wizard.h"

#include "shell/SetupController.h"

Status runWizard(Platform& platform) {
  SetupController controller(platform);
  if (Status shown = controller.loadMainWindow(); !shown) return shown;
  platform.toolkit.run();
  platform.notifications.post({.name = std::string(applicationWillTerminateNotification)});
  return {};
}
