// SPDX-License-Identifier: Apache-2.0

#include <array>
#include <exception>
#include <string_view>

#include "foundation/Format.h"
#include "shell/SetupController.h"

namespace {

/// The language that this was built for; empty for all of them. A build for one market sets it.
constexpr std::string_view buildLocaleTag = "";

/// What the window shows of whichever step it is.
constexpr std::array<std::string_view, 5> keysOfAStep = {"enableForward", "enableBackward", "mainLabelText",
                                                         "informativeText", "successfulInstall"};

/// What besides depends on the hosts that are selected, or on the last install.
constexpr std::array<std::string_view, 5> keysOfAnInstall = {"planText", "resultText", "canInstallAgain", "hasLog",
                                                             "hasFolder"};

/// Counts a transition for as long as it lasts.
class Transition {
 public:
  explicit Transition(int& transitions) : transitions_(transitions) { ++transitions_; }
  ~Transition() { --transitions_; }
  Transition(const Transition&) = delete;
  Transition& operator=(const Transition&) = delete;

 private:
  int& transitions_;
};

}  // namespace

void SetupController::nextView(SetupStepController* /*sender*/) {
  stateController_->setIsAperturePageDue(getControllerForStep(step::aperture) == apertureRunController_ &&
                                         successfulInstall());
  stateController_->advanceStateWithStepController(currentController(), this);
}

void SetupController::previousView(const std::string& sender) {
  SetupStepController* const current = currentController();
  auto* const buttons = dynamic_cast<SetupStepButtons*>(current);
  if (buttons != nullptr && buttons->overrideBackButton(sender)) return;
  stateController_->retreatStateWithStepController(current, this);
}

void SetupController::subViewButtonPress(const std::string& sender) {
  if (auto* const buttons = dynamic_cast<SetupStepButtons*>(currentController())) buttons->buttonPressed(sender);
}

void SetupController::stateDidChange(const Notification& notification) {
  const std::int32_t newState = stateController_->currentState();
  const Value oldValue = entryOf(Value(notification.userInfo), oldStateKey);
  const auto* const oldState = oldValue.as<std::int64_t>();
  if (newState == step::none) return closeWindow();
  if (newState == stateController_->finishedState()) {
    if (buildLocaleTag == "zh_CN") platform_.workspace.openUrl(localized("install_complete_url"));
    return closeWindow();
  }

  for (const std::string_view key : keysOfAStep) willChangeValueForKey(key);
  {
    const Transition transition(transitions_);
    leaveAndEnter(oldState == nullptr ? step::none : static_cast<std::int32_t>(*oldState), newState);
  }
  // A page may have moved on from inside its entry: the captions are those of where that led.
  setGoBackwardsText(viewModel_.goBackwardsText());
  setGoForwardText(viewModel_.goForwardText());
  for (const std::string_view key : keysOfAStep) didChangeValueForKey(key);
  for (const std::string_view key : keysOfAnInstall) {
    willChangeValueForKey(key);
    didChangeValueForKey(key);
  }
  if (closesAfterInstall_ && transitions_ == 0) closeWindow();
}

void SetupController::leaveAndEnter(std::int32_t oldState, std::int32_t newState) {
  if (const auto row = getIndicatorForStep(oldState)) row->setCurrentStep(false);
  if (const auto row = getIndicatorForStep(newState)) row->setCurrentStep(true);
  for (const auto& [number, step] : steps_) {
    if (step.indicator == nullptr) continue;
    const char* const key = number < newState ? "step_done" : number == newState ? "step_current" : "step_upcoming";
    step.indicator->setDescription(localized(key));
  }
  if (newState == step::installation) servedHosts_ = selectedHosts();
  if (newState == step::hosts && oldState > newState) {
    willChangeValueForKey("foundHosts");  // versions may be others now
    preview_.forget();
    didChangeValueForKey("foundHosts");
  }
  const std::int32_t delta = newState - oldState;
  if (const auto left = getControllerForStep(oldState)) attempt([&] { left->didProceed(delta); });
  const auto entered = getControllerForStep(newState);
  if (entered == nullptr) return;
  attempt([&] { entered->didEnterWithModel(getModelForStep(newState), getViewForStep(newState), this, delta); });
}

void SetupController::attempt(const std::function<void()>& what) const {
  try {
    what();
  } catch (const std::exception& exception) {
    platform_.log.write(formatted("%@", exception.what()));
  }
}

void SetupController::installAgain() {
  if (!canInstallAgain()) return;
  stateController_->retreatStateWithStepController(currentController(), this);
}

bool SetupController::windowShouldClose() {
  if (!copyInProgress()) return true;
  if (installFilesController_->askToStop()) closesAfterInstall_ = true;
  return false;
}

void SetupController::endWasRequested() {
  if (copyInProgress()) {
    closesAfterInstall_ = true;  // the install ends by itself, as soon as it can
  } else {
    closeWindow();
  }
}

void SetupController::closeWindow() {
  if (mainWindow_ != nullptr) mainWindow_->close();
}
