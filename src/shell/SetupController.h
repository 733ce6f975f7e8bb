// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>

#include "contract/SetupMainController.h"
#include "foundation/NotificationCenter.h"
#include "hosts/HostsController.h"
#include "hosts/HostsModel.h"
#include "install/InstallFilesController.h"
#include "platform/Platform.h"
#include "shell/InstallStateController.h"
#include "shell/PlanPreview.h"
#include "shell/SetupViewModel.h"
#include "shell/StepIndicator.h"
#include "steps/ApertureRunController.h"
#include "steps/ApertureRunModel.h"
#include "steps/LicenseController.h"
#include "steps/LicenseModel.h"
#include "steps/RegisterController.h"
#include "steps/RegisterModel.h"
#include "steps/RunningHostViewController.h"
#include "steps/RunningHostViewModel.h"

/// Owns the wizard's window and its pages, leads from one page to the next, and publishes what the window shows.
///
/// A page may ask for the next one while it is being entered, so that transitions nest. What the window asks for while
/// a page is being entered is dropped: an install runs inside its page's entry, and a click in that time must not lead
/// anywhere.
///
/// Its operations are defined by topic: the steps in SetupController.cpp, the transitions in
/// SetupControllerNavigation.cpp, the hosts in SetupControllerHosts.cpp, what else the window shows and sends in
/// SetupControllerProperties.cpp.
class SetupController : public SetupMainController, public ApplicationDelegate {
 public:
  explicit SetupController(Platform& platform);

  /// Makes the window from its interface description and shows the first page. Fails when the description is missing
  /// or damaged, or describes no window or no place for the pages. Any other view that it does not describe costs a
  /// line of the log, and its page has nothing but its heading.
  Status loadMainWindow();

  // The table of the steps. The step list shows those that have a model.
  void addStep(std::shared_ptr<View> view, std::shared_ptr<SetupStepController> withController,
               std::shared_ptr<SetupStepModel> withModel, std::int32_t forStep);
  [[nodiscard]] std::shared_ptr<View> getViewForStep(std::int32_t step) const;
  [[nodiscard]] std::shared_ptr<SetupStepController> getControllerForStep(std::int32_t step) const;
  [[nodiscard]] std::shared_ptr<SetupStepModel> getModelForStep(std::int32_t step) const;
  [[nodiscard]] std::shared_ptr<StepIndicator> getIndicatorForStep(std::int32_t step) const;

  // Navigation.
  void nextView(SetupStepController* sender) override;
  void previousView(const std::string& sender);
  void subViewButtonPress(const std::string& sender);
  void customInstallMenu() { setIsCustomInstallAllowed(true); }
  /// From the last page back to the choice of hosts, for another try.
  void installAgain();
  void showLog();
  /// Shows the folder of the first host that was served.
  void showFolder();
  /// Does nothing; interface descriptions of makers may send it.
  void initialView() {}

  // What the window shows.
  [[nodiscard]] const std::string& goForwardText() const { return goForwardText_; }
  void setGoForwardText(std::string text);
  [[nodiscard]] const std::string& goBackwardsText() const { return goBackwardsText_; }
  void setGoBackwardsText(std::string text);
  [[nodiscard]] bool enableForward() const;
  [[nodiscard]] bool enableBackward() const;
  [[nodiscard]] std::string mainLabelText() const;
  [[nodiscard]] RichText informativeText() const;
  [[nodiscard]] RichText licenseText() const;
  [[nodiscard]] RichText registerText() const;
  [[nodiscard]] HostList foundHosts() const override;
  [[nodiscard]] HostList selectedHosts() const override;
  [[nodiscard]] bool copyInProgress() const;
  /// How much of the install is done, from 0 to 1.
  [[nodiscard]] double installProgress() const;
  /// How far it has come, in words.
  [[nodiscard]] std::string installStatus() const { return installFilesController_->statusText(); }
  [[nodiscard]] bool successfulInstall() const override;
  /// What an install into the selected hosts needs.
  [[nodiscard]] std::string planText() const;
  /// The success page or the failure message, with what was installed where, and what failed and why.
  [[nodiscard]] RichText resultText() const;
  [[nodiscard]] bool canInstallAgain() const;
  [[nodiscard]] bool hasLog() const { return installFilesController_->report().isLogWritten; }
  [[nodiscard]] bool hasFolder() const { return !folderToShow().empty(); }
  [[nodiscard]] std::string windowTitle() const { return productFormat("main_wnd_title_fmt"); }
  [[nodiscard]] std::string aboutMenuText() const { return productFormat("about_menu_fmt"); }
  [[nodiscard]] std::string quitMenuText() const { return productFormat("quit_menu_fmt"); }
  [[nodiscard]] std::string hideMenuText() const { return productFormat("hide_window_menu_fmt"); }
  [[nodiscard]] std::string customInstallMenuText() const { return localized("allow_custom"); }
  [[nodiscard]] std::string customInstallButtonText() const { return localized("custom_install_button"); }
  [[nodiscard]] std::string configureEditorsButtonText() const { return localized("configure_editors"); }

  // Options. Each change is announced under the name of what reads it.
  [[nodiscard]] bool isCustomInstallAllowed() const override { return customInstallAllowed_; }
  void setIsCustomInstallAllowed(bool allowed) override;
  [[nodiscard]] bool isCustomInstallChosen() const override { return customInstallChosen_; }
  void setIsCustomInstallChosen(bool chosen) override;
  [[nodiscard]] bool canConfigureLumatraExternalEditors() const { return configureLumatraExternalEditorsAllowed_; }
  /// Has no effect where the maker has no editor to tell.
  void setCanConfigureLumatraExternalEditors(bool can);
  [[nodiscard]] bool shouldConfigureLumatraExternalEditors() const override {
    return configureLumatraExternalEditorsShould_;
  }
  void setShouldConfigureLumatraExternalEditors(bool should);
  [[nodiscard]] bool customInstallRecommended() const override { return isCustomInstallRecommended_; }
  void setCustomInstallRecommended(bool recommended);

  void customHostAdded(const std::shared_ptr<HostModel>& host) override;
  void customHostRemoved(const std::shared_ptr<HostModel>& host) override;

  // The window's side of the properties and actions above, by name.
  [[nodiscard]] std::optional<ShownValue> shownValue(std::string_view key) const override;
  bool setShownValue(std::string_view key, const ShownValue& value) override;
  bool setTicked(std::string_view key, std::size_t row, bool isTicked) override;
  [[nodiscard]] InterfaceOwner* objectForKey(std::string_view key) override;
  bool performAction(std::string_view action, const std::string& sender) override;
  /// Refuses every change; Return does what the forward button does.
  [[nodiscard]] bool textShouldChange(std::string_view replacement) override;

  // The application.
  /// While files are being installed, the person is asked whether to stop; the window closes once that has happened.
  [[nodiscard]] bool windowShouldClose() override;
  [[nodiscard]] bool applicationShouldTerminateAfterLastWindowClosed() const override { return true; }

 private:
  /// What a step consists of; any of it may be missing.
  struct Step {
    std::shared_ptr<View> view;
    std::shared_ptr<SetupStepController> controller;
    std::shared_ptr<SetupStepModel> model;
    std::shared_ptr<StepIndicator> indicator;
  };
  struct Tables;  ///< of what is shown, set and done, by name

  /// The pages that the interface description refers to.
  void makePages();
  void awakeFromInterface();
  void addAperturePage();
  void stateDidChange(const Notification& notification);
  void leaveAndEnter(std::int32_t oldState, std::int32_t newState);
  void closeWindow();
  void endWasRequested();
  [[nodiscard]] std::string folderToShow() const;
  void setFlag(bool& flag, bool value, std::string_view key);
  /// The view of the window with this name; null, and a line of the log, when there is none.
  [[nodiscard]] std::shared_ptr<View> viewNamed(const std::string& name) const;
  /// Has a page do something. An exception ends up in the log: the wizard is still there to be closed, at least.
  void attempt(const std::function<void()>& what) const;
  [[nodiscard]] const Step& stepAt(std::int32_t step) const;
  [[nodiscard]] SetupStepController* currentController() const;
  [[nodiscard]] std::string localized(std::string_view key) const;
  [[nodiscard]] std::string productFormat(std::string_view key) const;
  [[nodiscard]] std::vector<ListRow> hostRows() const;
  [[nodiscard]] Picture iconOf(const HostModel& host) const;

  Platform& platform_;
  std::shared_ptr<InstallStateController> stateController_;
  SetupViewModel viewModel_;
  NavigationCaptions captions_;

  // The window and what is in it; null before it is made, and where its description leaves something out.
  std::unique_ptr<Interface> interface_;
  std::shared_ptr<Window> mainWindow_;
  std::shared_ptr<View> dynamicView_;
  std::shared_ptr<View> stepIndicatorView_;
  std::shared_ptr<ListView> foundHostsController_;

  std::map<std::int32_t, Step> steps_;

  std::shared_ptr<LicenseModel> licenseModel_;
  std::shared_ptr<LicenseController> licenseController_;
  std::shared_ptr<InstallFilesModel> installFilesModel_;
  std::shared_ptr<InstallFilesController> installFilesController_;
  std::shared_ptr<HostsModel> hostsModel_;
  std::shared_ptr<HostsController> hostsController_;
  std::shared_ptr<RunningHostViewModel> hostsRunningModel_;
  std::shared_ptr<RunningHostViewController> hostsRunningController_;
  std::shared_ptr<RegisterModel> registerModel_;
  std::shared_ptr<ApertureRunModel> apertureRunModel_;
  std::shared_ptr<ApertureRunController> apertureRunController_;

  std::string goForwardText_;
  std::string goBackwardsText_;
  bool customInstallAllowed_ = false;
  bool customInstallChosen_ = false;
  bool configureLumatraExternalEditorsAllowed_ = false;
  bool configureLumatraExternalEditorsShould_ = false;
  bool isCustomInstallRecommended_ = true;

  int transitions_ = 0;  ///< how many are under way, one inside the other
  bool closesAfterInstall_ = false;
  HostList servedHosts_;  ///< of the last install
  mutable PlanPreview preview_;
  mutable std::map<std::string, Picture> icons_;
  NotificationCenter::Observation observation_;
  Interruptions::Observation interruption_;
};
