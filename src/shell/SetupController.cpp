// SPDX-License-Identifier: Apache-2.0

#include "shell/SetupController.h"

#include <utility>

#include "foundation/Format.h"
#include "hosts/SupportLevel.h"
#include "payload/Configuration.h"
#include "payload/PlugInFilesModel.h"

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
  if (Configuration(platform_).hasAperturePage()) addAperturePage();
  addStep(viewNamed("registerView"), std::make_shared<RegisterController>(), registerModel_,
          stateController_->completionState());
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

void SetupController::addAperturePage() {
  if (!platform_.files.exists("/Applications/Aperture.app")) return;
  const std::string applications = PlugInFilesModel(platform_).getStandAloneAppsDirInBundle();
  const auto names = platform_.files.contentsOfDirectory(applications);
  if (!names || names->empty()) {
    platform_.log.write(formatted("There is no page about Aperture: %@ holds no application", applications));
    return;
  }
  stateController_->insertAperturePage();
  addStep(viewNamed("apertureRunView"), apertureRunController_, apertureRunModel_, step::aperture);
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
