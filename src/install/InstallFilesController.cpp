#include "install/InstallFilesController.h"

#include <utility>

#include "install/launching/OneLineTasksWithOutput.h"

void InstallFilesController::didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                                               SetupMainController* withMainController, std::int32_t direction) {
  model_ = std::dynamic_pointer_cast<InstallFilesModel>(std::move(model));
  view_ = std::move(withView);
  if (view_ != nullptr) view_->setHidden(false);
  mainController_ = withMainController;
  if (direction < 1) return;

  install(mainController_->selectedHosts(), mainController_->shouldConfigureLumatraExternalEditors());
  announce({"successfulInstall"}, [this] {
    installComplete_ = !fileOpErrorOccurred_;
    setUIText(localized("done"));
    setInProgress(false);
    authorization_.reset();
    mainController_->nextView(this);
  });
}

void InstallFilesController::didProceed(std::int32_t delta) {
  model_.reset();
  if (view_ != nullptr) view_->setHidden(true);
  view_.reset();
  if (delta < 0) installComplete_ = false;
}

void InstallFilesController::install(const HostList& hosts, bool shouldConfigureLumatraExternalEditors) {
  setInstallComplete(false);
  setInProgress(true);
  authDenied_ = fileOpErrorOccurred_ = installComplete_ = false;
  installedPaths_.clear();  // the log tells of this install alone
  failedPaths_.clear();

  if (!obtainAuthorization()) {
    platform_.log.write("SFAuthorization permit with rights error");
    setUIText(localized("auth_error"));
    setInstallComplete(false);
    fileOpErrorOccurred_ = true;
    return;
  }

  planProgress(hosts);
  installFiles();
  if (shouldConfigureLumatraExternalEditors) configureLumatraExternalEditors();
  cleanManifests();
  runLsregister();
  for (const auto& host : hosts) {
    if (fileOpErrorOccurred_ || authDenied_) break;
    installFiles(*host);
  }
  logInstalledPaths();
  endProgress();
}

void InstallFilesController::planProgress(const HostList& hosts) {
  progress_.start(platform_.files.bytesCopied());
  if (mainController_ == nullptr) return;
  for (const PlannedCopy& package : hostIndependentPackages()) planProgressOf(package.source);
  for (const ProductFolder& folder : productFolders()) {
    for (const std::string& source : folder.sources) planProgressOf(source);
  }
  for (const auto& host : hosts) {
    for (const auto& [from, to] : payloadOf(*host)) {
      for (const PlannedCopy& copy : hostFilesFrom(from, to).copies) planProgressOf(copy.source);
    }
  }
  showProgress();
  platform_.files.setWhileBusy([this] {
    showProgress();
    platform_.runLoop.runUntilDate(RunLoop::Clock::now());
  });
}

void InstallFilesController::planProgressOf(const std::string& source) {
  if (progress_.isKnown(source)) {
    progress_.planAgain(source);
  } else {
    progress_.plan(source, platform_.files.sizeOfItem(source));
  }
}

void InstallFilesController::showProgress() {
  announce({"installProgress"}, [] {});
}

void InstallFilesController::endProgress() {
  platform_.files.setWhileBusy({});
  progress_.finishAll();
  showProgress();
}

bool InstallFilesController::obtainAuthorization() {
  if (authorization_ != nullptr) return true;
  auto authorization = platform_.authorizations.createAuthorization();
  if (!authorization->obtain(Authorization::extendRights)) return false;
  authorization_ = std::move(authorization);
  return true;
}

void InstallFilesController::setInProgress(bool inProgress) {
  announce({"enableForward", "enableBackward", "canProceed", "copyInProgress"}, [&] { copyInProgress_ = inProgress; });
  platform_.runLoop.runUntilDate(RunLoop::Clock::now());
}

void InstallFilesController::setUIText(const std::string& text) {
  announce({"informativeText", "mainLabelText"}, [&] {
    if (model_ != nullptr) model_->setInformativeText(text);
  });
  platform_.runLoop.runBeforeDate(RunLoop::Clock::now());
}

void InstallFilesController::announce(std::initializer_list<std::string_view> keys,
                                      const std::function<void()>& change) {
  // Without a window there is no main controller, and nobody to tell.
  SetupMainController* const told = mainController_;
  if (told != nullptr) {
    for (const std::string_view key : keys) told->willChangeValueForKey(key);
  }
  change();
  if (told != nullptr) {
    for (const std::string_view key : keys) told->didChangeValueForKey(key);
  }
}

std::string InstallFilesController::localized(std::string_view key) const {
  return platform_.bundles.mainBundle().localizedString(key);
}

bool InstallFilesController::runTool(const std::string& tool, const std::vector<std::string>& arguments) {
  return mayGoOnAfter(
      OneLineTasksWithOutput::stringByLaunchingPath(tool, arguments, *authorization_, /*wait=*/true).error);
}

bool InstallFilesController::runToolWithoutOutput(const std::string& tool, const std::vector<std::string>& arguments) {
  return mayGoOnAfter(OneLineTasksWithOutput::authorizedLaunchPath(tool, arguments, *authorization_, /*wait=*/true));
}

bool InstallFilesController::mayGoOnAfter(const std::optional<Error>& error) {
  if (!error || !isFatalAuthCode(error->code)) return true;
  authDenied_ = true;
  return false;
}

void InstallFilesController::runToolIgnoringResult(const std::string& tool, const std::vector<std::string>& arguments) {
  static_cast<void>(OneLineTasksWithOutput::stringByLaunchingPath(tool, arguments, *authorization_, /*wait=*/true));
}

std::string InstallFilesController::ownerText() const { return platform_.user.shortName() + ":admin"; }
