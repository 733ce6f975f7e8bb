// SPDX-License-Identifier: Apache-2.0

#include "steps/ApertureRunController.h"

#include <chrono>
#include <string>
#include <utility>

#include "foundation/Path.h"
#include "payload/PlugInFilesModel.h"
#include "steps/ApertureRunModel.h"

void ApertureRunController::didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                                              SetupMainController* withMainController, std::int32_t direction) {
  const auto page = std::dynamic_pointer_cast<ApertureRunModel>(model);
  PageController::didEnterWithModel(std::move(model), std::move(withView), withMainController, direction);

  // Nothing changes: the window is to read them again.
  withMainController->willChangeValueForKey("informativeText");
  withMainController->willChangeValueForKey("successfulInstall");
  if (page != nullptr) page->willChangeValueForKey("backgroundImage");
  withMainController->didChangeValueForKey("informativeText");
  withMainController->didChangeValueForKey("successfulInstall");
  if (page != nullptr) page->didChangeValueForKey("backgroundImage");
}

void ApertureRunController::didProceed(std::int32_t delta) {
  runStandAloneApplication();
  PageController::didProceed(delta);
}

void ApertureRunController::runStandAloneApplication() {
  const PlugInFilesModel paths(platform_);
  const auto names = platform_.files.contentsOfDirectory(paths.getStandAloneAppsDirInBundle()).valueOr({});
  const std::string application = joinPath(paths.standAloneAppsInstallPath(), names.at(0));
  const auto launched = platform_.workspace.launchHidden(application, {"-no-ui"});
  if (launched == nullptr) return;
  platform_.clock.sleepFor(std::chrono::seconds(2));
  launched->terminate();
}
