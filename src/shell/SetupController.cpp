// SPDX-License-Identifier: Apache-2.0

#include "shell/SetupController.h"

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>
#include <utility>

#include "foundation/Format.h"
#include "hosts/SupportLevel.h"

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

// Construction.

SetupController::SetupController(Platform& platform)
    : platform_(platform),
      stateController_(InstallStateController::initWithInstallType(platform.notifications, 0)),
      viewModel_(platform.bundles.mainBundle()),
      captions_(platform.bundles.mainBundle()),
      licenseModel_(std::make_shared<LicenseModel>(platform)),
      licenseController_(std::make_shared<LicenseController>(platform)),
      installFilesModel_(std::make_shared<InstallFilesModel>(platform)),
      installFilesController_(std::make_shared<InstallFilesController>(platform)),
      hostsModel_(std::make_shared<HostsModel>(platform)),
      preview_(platform) {
  viewModel_.setStateController(stateController_);
  static_cast<void>(SupportLevel(platform.processor));  // every processor will do; a maker may ask for more here
  setCanConfigureLumatraExternalEditors(false);
  setShouldConfigureLumatraExternalEditors(false);
  setCustomInstallRecommended(true);
  goForwardText_ = captions_.continue_string;
  goBackwardsText_ = captions_.quit_string;
  observation_ = platform.notifications.addObserver(
      stateDidChangeNotification, nullptr, [this](const Notification& notification) { stateDidChange(notification); });
}

Status SetupController::loadMainWindow() {
  makePages();
  auto interface = platform_.toolkit.loadInterface("MainWindow", *this);
  if (!interface) return interface.error();
  interface_ = std::move(*interface);
  mainWindow_ = interface_->window("mainWindow");
  if (mainWindow_ == nullptr) return Error::posix(std::errc::no_such_file_or_directory, "MainWindow.ui: mainWindow");
  dynamicView_ = interface_->view("dynamicView");
  if (dynamicView_ == nullptr) return Error::posix(std::errc::no_such_file_or_directory, "MainWindow.ui: dynamicView");
  awakeFromInterface();
  return {};
}

void SetupController::makePages() {
  hostsController_ = std::make_shared<HostsController>(platform_);
  hostsRunningModel_ = std::make_shared<RunningHostViewModel>(platform_);
  hostsRunningController_ = std::make_shared<RunningHostViewController>(platform_, hostsRunningModel_);
  registerModel_ = std::make_shared<RegisterModel>(platform_);
  apertureRunModel_ = std::make_shared<ApertureRunModel>(platform_);
  apertureRunController_ = std::make_shared<ApertureRunController>(platform_);
}

void SetupController::awakeFromInterface() {
  stepIndicatorView_ = viewNamed("stepIndicatorView");
  foundHostsController_ = std::dynamic_pointer_cast<ListView>(viewNamed("foundHostsController"));
  addStep(viewNamed("licenseView"), licenseController_, licenseModel_, step::license);
  addStep(viewNamed("installFilesView"), installFilesController_, installFilesModel_, step::installation);
  addStep(viewNamed("hostsView"), hostsController_, hostsModel_, step::hosts);
  addStep(viewNamed("rtfView"), hostsRunningController_, hostsRunningModel_, step::runningHosts);
  addStep(viewNamed("registerView"), std::make_shared<RegisterController>(), registerModel_, step::completion);
  stateController_->gotoStartingState(this);
  for (const char* const key :
       {"licenseText", "foundHosts", "informativeText", "copyInProgress", "windowTitle", "mainLabelText"}) {
    willChangeValueForKey(key);
    didChangeValueForKey(key);
  }
  interruption_ = platform_.interruptions.observe([this] { endWasRequested(); });
  platform_.toolkit.setApplicationDelegate(this);
  mainWindow_->centre();
}

std::shared_ptr<View> SetupController::viewNamed(const std::string& name) const {
  auto view = interface_->view(name);
  if (view == nullptr) platform_.log.write(formatted("There is no %@ in MainWindow", name));
  return view;
}

// The table of the steps.

void SetupController::addStep(std::shared_ptr<View> view, std::shared_ptr<SetupStepController> withController,
                              std::shared_ptr<SetupStepModel> withModel, std::int32_t forStep) {
  Step& step = steps_[forStep];
  if (view != nullptr) {
    view->setHidden(true);
    if (dynamicView_ != nullptr) dynamicView_->addSubview(view);
    step.view = std::move(view);
  }
  if (withController != nullptr) step.controller = std::move(withController);
  if (withModel == nullptr) return;
  step.model = std::move(withModel);
  auto row = StepIndicator::init(platform_);
  if (row == nullptr) return;
  const double top = stepIndicatorView_ == nullptr ? 0 : stepIndicatorView_->frame().size.height;
  row->placeInParentView(stepIndicatorView_, {0, top - static_cast<double>(row->height()) * (forStep + 1)});
  row->setText(step.model->stepIndicatorLabelText());
  step.indicator = std::move(row);
}

const SetupController::Step& SetupController::stepAt(std::int32_t step) const {
  static const Step none;
  const auto found = steps_.find(step);
  return found == steps_.end() ? none : found->second;
}

std::shared_ptr<View> SetupController::getViewForStep(std::int32_t step) const { return stepAt(step).view; }

std::shared_ptr<SetupStepController> SetupController::getControllerForStep(std::int32_t step) const {
  return stepAt(step).controller;
}

std::shared_ptr<SetupStepModel> SetupController::getModelForStep(std::int32_t step) const { return stepAt(step).model; }

std::shared_ptr<StepIndicator> SetupController::getIndicatorForStep(std::int32_t step) const {
  return stepAt(step).indicator;
}

SetupStepController* SetupController::currentController() const {
  return getControllerForStep(stateController_->currentState()).get();
}

// Navigation.

void SetupController::nextView(SetupStepController* /*sender*/) {
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
  if (newState == step::finished) {
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

void SetupController::customHostAdded(const std::shared_ptr<HostModel>& host) {
  willChangeValueForKey("foundHosts");
  hostsModel_->addHostAtRuntime(host);
  didChangeValueForKey("foundHosts");
  if (foundHostsController_ == nullptr) return;
  const HostList hosts = foundHosts();
  foundHostsController_->selectRow(static_cast<std::size_t>(std::ranges::find(hosts, host) - hosts.begin()));
}

void SetupController::customHostRemoved(const std::shared_ptr<HostModel>& host) {
  willChangeValueForKey("foundHosts");
  hostsModel_->removeHostAtRuntime(host);
  didChangeValueForKey("foundHosts");
}
