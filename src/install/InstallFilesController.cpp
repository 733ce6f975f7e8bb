// SPDX-License-Identifier: Apache-2.0

#include "install/InstallFilesController.h"

#include <algorithm>
#include <set>
#include <utility>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/InstallTexts.h"
#include "install/tasks/ApplicationRegistration.h"
#include "install/tasks/FileErrorReporting.h"
#include "payload/InstallerTexts.h"

// The page.

void InstallFilesController::didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                                               SetupMainController* withMainController, std::int32_t direction) {
  model_ = std::dynamic_pointer_cast<InstallFilesModel>(std::move(model));
  view_ = std::move(withView);
  if (view_ != nullptr) view_->setHidden(false);
  mainController_ = withMainController;
  if (direction < 1) return;

  install(mainController_->selectedHosts(), mainController_->shouldConfigureLumatraExternalEditors());
  announce({"successfulInstall"}, [this] {
    installComplete_ = !fileOpErrorOccurred_ && !report_.wasCutShort();
    setUIText(localized("done"));
    setInProgress(false);
    tools_.release();
    mainController_->nextView(this);
  });
}

void InstallFilesController::didProceed(std::int32_t delta) {
  model_.reset();
  if (view_ != nullptr) view_->setHidden(true);
  view_.reset();
  if (delta < 0) installComplete_ = false;
}

// The sequence.

void InstallFilesController::install(const HostList& hosts, bool shouldConfigureLumatraExternalEditors) {
  begin();
  if (!obtainAuthorization()) {
    platform_.log.write("SFAuthorization permit with rights error");
    setUIText(localized("auth_error"));
    fileOpErrorOccurred_ = true;
    return;
  }
  if (!lockVolume()) return;

  const InstallPlan plan = planner().plan(hosts);
  logSkippedEntries(platform_, plan);
  installer_.install(plan);
  noteShortage();
  const bool isStopped = authDenied() || report_.shortage || report_.wasCutShort();
  if (!isStopped || !installedPaths().empty()) {
    registerApplications(plan);
    if (shouldConfigureLumatraExternalEditors) configureLumatraExternalEditors();
    noteUnreadable();  // what is not known completely takes nothing away
    if (!isStopped) runMakersTasks(hosts);
    cleanManifests();
    runLsregister();
    logInstalledPaths();
  }
  installer_.finish();
  noteUnreadable();
  tools_.unlockVolume();
}

void InstallFilesController::noteUnreadable() {
  // A host that could not be read was not found, and a text that could not be read is empty.
  for (const Error& error : platform_.files.unreadable()) {
    platform_.log.write(error.description());
    report_.unreadable.push_back({error.subject, error});
    fileOpErrorOccurred_ = true;
  }
  platform_.files.forgetUnreadable();  // the next install tells of what is unreadable then
}

void InstallFilesController::begin() {
  setInstallComplete(false);
  report_ = {};  // the log tells of this install alone
  isStopWanted_ = false;
  setInProgress(true);
  tools_.clearDenied();
  fileOpErrorOccurred_ = installComplete_ = false;
  shownProgress_ = 0;
  progress_ = {};
  pace_.begin(std::chrono::steady_clock::now());
}

void InstallFilesController::run(const InstallPlan& plan) {
  const bool isPartOfInstall = tools_.isVolumeLocked();
  if (!isPartOfInstall && !lockVolume()) return;
  installer_.install(plan);
  noteShortage();
  registerApplications(plan);
  installer_.finish();
  if (!isPartOfInstall) tools_.unlockVolume();
}

bool InstallFilesController::lockVolume() {
  const auto waiting = [&, isShown = false]() mutable {
    const std::string text = platform_.bundles.mainBundle().localizedString(
        "waiting_for_installer", "Waiting for another installer to finish…", "Localizable");
    if (!std::exchange(isShown, true)) platform_.log.write(text);
    setUIText(text);
    return !platform_.interruptions.requested() && !isStopWanted_;
  };
  const Status locked = tools_.lockVolume(waiting);
  if (locked) return true;
  const auto signal = platform_.interruptions.requested();
  if (signal || isStopWanted_) {
    report_.interruption = {signal.value_or(0), Interruption::Moment::beforeChanges};
  } else {
    itemFailed(locked.error().subject, locked.error());
  }
  return false;
}

void InstallFilesController::registerApplications(const InstallPlan& plan) {
  const std::set<std::string_view> installed(installedPaths().begin(), installedPaths().end());
  for (const PlannedGroup& group : plan.groups()) {
    for (const PlannedBatch& batch : group.batches) {
      for (const PlannedItem& item : batch.items) {
        if (item.isRegistered && installed.contains(item.target)) registerApplication(platform_, item.target);
      }
    }
  }
}

void InstallFilesController::noteShortage() {
  if (!report_.shortage) return;
  fileOpErrorOccurred_ = true;
  const std::string text = shortageText(platform_, *report_.shortage);
  platform_.log.write(text);
  setUIText(text);
  ask(fileErrorAlert(platform_, text));
}

// What is shown meanwhile.

void InstallFilesController::itemBegins(const PlannedItem& item) {
  const std::string text = localized("installing_file") + lastPathComponent(item.source);
  platform_.log.write(text);
  setUIText(text);
  if (item.fate == Fate::replaced) platform_.log.write("removing existing file...");
}

void InstallFilesController::itemFailed(const std::string& path, const Error& reason) {
  platform_.log.write(reason.description());
  report_.failures.push_back({path, reason});
  fileOpErrorOccurred_ = true;
  platform_.log.write(formatted("Could not install file: %@", path));
  ask(fileErrorAlert(platform_, "", path));
}

void InstallFilesController::progressed(const InstallProgress& progress) {
  if (mainController_ == nullptr) return;
  announce({"installProgress", "installStatus"}, [&] {
    const auto now = std::chrono::steady_clock::now();
    shownProgress_ = std::max(shownProgress_, progress.fraction(now));
    progress_ = progress;
    pace_.note(shownProgress_, now);
  });
  platform_.runLoop.runUntilDate(RunLoop::Clock::now());
}

AlertAnswer InstallFilesController::ask(const Alert& alert) {
  ++alerts_;
  const AlertAnswer answer = platform_.toolkit.runAlertPanel(alert);
  --alerts_;
  return answer;
}

bool InstallFilesController::askToStop() {
  if (!copyInProgress_ || isStopWanted_) return isStopWanted_;
  if (alerts_ > 0 || !installedPaths().empty()) return false;
  const Alert question{.title = localized("stop_title"),
                       .message = localized("stop_text"),
                       .defaultButton = localized("install_error_stop"),
                       .alternateButton = localized("install_error_proceed")};
  isStopWanted_ = ask(question) == AlertAnswer::defaultButton;
  return isStopWanted_;
}

std::string InstallFilesController::statusText() const { return progressText(platform_, progress_, pace_.remaining()); }

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

HostList InstallFilesController::selectedHosts() const {
  return mainController_ == nullptr ? HostList{} : mainController_->selectedHosts();
}
