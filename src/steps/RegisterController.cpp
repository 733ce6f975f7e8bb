// SPDX-License-Identifier: Apache-2.0

#include "steps/RegisterController.h"

#include <utility>

#include "steps/RegisterModel.h"

void RegisterController::didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                                           SetupMainController* withMainController, std::int32_t direction) {
  const auto page = std::dynamic_pointer_cast<RegisterModel>(model);
  PageController::didEnterWithModel(std::move(model), std::move(withView), withMainController, direction);

  withMainController->willChangeValueForKey("informativeText");
  withMainController->willChangeValueForKey("successfulInstall");
  if (page != nullptr) page->willChangeValueForKey("backgroundImage");
  const bool isInstalled = withMainController->successfulInstall();
  if (page != nullptr) isInstalled ? page->useRegisterText() : page->useFailText();
  withMainController->didChangeValueForKey("informativeText");
  withMainController->didChangeValueForKey("successfulInstall");
  if (page != nullptr) page->didChangeValueForKey("backgroundImage");
}
