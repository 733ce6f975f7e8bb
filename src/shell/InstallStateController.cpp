// SPDX-License-Identifier: Apache-2.0

#include "shell/InstallStateController.h"

#include "contract/SetupStepController.h"

std::shared_ptr<InstallStateController> InstallStateController::initWithInstallType(NotificationCenter& notifications,
                                                                                    std::int32_t type) {
  return std::shared_ptr<InstallStateController>(new InstallStateController(notifications, type));
}

void InstallStateController::gotoStartingState(SetupMainController* /*mainController*/) {
  changeState(step::license, step::none);
}

void InstallStateController::advanceStateWithStepController(SetupStepController* stepController,
                                                            SetupMainController* /*mainController*/) {
  if (stepController == nullptr || !stepController->canProceed(+1)) return;
  const std::int32_t old = currentState_;
  // Written out although it mostly is the next number: the installation must lead to the completion.
  const bool isPassing = old == step::installation && !isAperturePageDue_;
  changeState(isPassing ? completionState() : old + 1, old);
}

void InstallStateController::retreatStateWithStepController(SetupStepController* stepController,
                                                            SetupMainController* /*mainController*/) {
  const std::int32_t old = currentState_;
  if (stepController == nullptr || !stepController->canProceed(-1)) return;
  // Back from what follows the installation leads to another choice of hosts.
  const bool isAfterInstallation = old > step::installation && old <= completionState();
  changeState(isAfterInstallation ? step::hosts : old - 1, old);
}

void InstallStateController::changeState(std::int32_t newState, std::int32_t oldState) {
  currentState_ = newState;
  notifications_.post({.name = std::string(stateDidChangeNotification),
                       .object = this,
                       .userInfo = {{std::string(oldStateKey), Value(std::int64_t{oldState})}}});
}
