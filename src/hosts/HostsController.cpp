// SPDX-License-Identifier: Apache-2.0

#include "hosts/HostsController.h"

#include <utility>

#include "foundation/Path.h"
#include "payload/InstallerTexts.h"
#include "settings/BundleUserDefaults.h"

namespace {

constexpr const char* customPathKey = "customPath";

void setHidden(const std::shared_ptr<View>& view, bool isHidden) {
  if (view != nullptr) view->setHidden(isHidden);
}

}  // namespace

void HostsController::didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                                        SetupMainController* withMainController, std::int32_t /*direction*/) {
  mainController_ = withMainController;
  model_ = std::dynamic_pointer_cast<HostsModel>(std::move(model));
  view_ = withView;
  const HostList found = mainController_->foundHosts();
  if (found.empty() && !mainController_->isCustomInstallAllowed() && !mainController_->customInstallRecommended()) {
    mainController_->nextView(this);  // leaves this page, which lets go of the view
    setHidden(withView, true);
    return;
  }
  const bool isOnlyCustomHost =
      found.size() == 1 && dynamic_cast<const UnknownHostModel*>(found.front().get()) != nullptr;
  if (found.empty() || isOnlyCustomHost) return openCustomScreenOnEntry();
  show(Screen::list);
}

void HostsController::openCustomScreenOnEntry() {
  // A custom host that was given up is made anew: the screen would have nothing to put a folder into.
  if (customInstallView_ != nullptr && customHost_ != nullptr) return show(Screen::custom);
  show(Screen::list);  // what is left when there is no custom screen to be had
  goToCustomScreen();
}

void HostsController::didProceed(std::int32_t /*delta*/) {
  setHidden(currentView(), true);
  for (const auto& host : mainController_->selectedHosts()) {
    const auto custom = std::dynamic_pointer_cast<UnknownHostModel>(host);
    if (custom == nullptr) continue;
    // There is never a host to take scripts and panels from, chosen or not.
    custom->setShouldInstallPanels(false);
    custom->setShouldInstallScripts(false);
    custom->setShouldInstallPlugIns(installPluginForCustomInstall_);
    auto settings = BundleUserDefaults::initWithPersistentDomainName(platform_, installerPreferencesDomain(platform_));
    settings.setObject(custom->plugInPath(), customPathKey);
    settings.synchronize();  // a signal may end the program before it writes them by itself
  }
  model_.reset();
  view_.reset();
}

std::shared_ptr<View> HostsController::currentView() const {
  return screen_ == Screen::custom ? customInstallView_ : view_;
}

bool HostsController::enableForward() const {
  if (screen_ != Screen::custom) return true;
  if (installPluginForCustomInstall_ && (customHost_ == nullptr || customHost_->plugInPath().empty())) return false;
  const bool isAnythingChosen =
      installScriptsAndPanelsChosen_ || installPluginForCustomInstall_ || installPlugin64ForCustomInstall_;
  return isAnythingChosen && enableForward_;
}

void HostsController::buttonPressed(const std::string& /*sender*/) { goToCustomScreen(); }

bool HostsController::overrideBackButton(const std::string& /*sender*/) {
  if (screen_ != Screen::custom) return false;
  undoCustomScreen();
  return true;
}

bool HostsController::willBranch(std::int32_t direction) const {
  if (customHost_ == nullptr) return false;
  return screen_ == Screen::custom ? direction < 0 : direction > 0;
}

void HostsController::goToCustomScreen() {
  mainController_->willChangeValueForKey("enableForward");
  if (customHost_ == nullptr) makeCustomHost();
  mainController_->didChangeValueForKey("enableForward");
  mainController_->setIsCustomInstallChosen(true);
  proceedInBranch(1);
  if (screen_ == Screen::custom) return;
  // Nobody could give the custom host a folder.
  giveUpCustomHost();
  mainController_->setIsCustomInstallChosen(false);
}

void HostsController::makeCustomHost() {
  const auto settings =
      BundleUserDefaults::initWithPersistentDomainName(platform_, installerPreferencesDomain(platform_));
  customHost_ = UnknownHostModel::initWithPlugInPath(platform_, settings.objectForKey(customPathKey).text());
  customHost_->setHostIsSelected(true);
  for (const auto& host : mainController_->foundHosts()) host->setHostIsSelected(false);
  mainController_->customHostAdded(customHost_);
}

void HostsController::undoCustomScreen() {
  giveUpCustomHost();
  proceedInBranch(1);
}

void HostsController::giveUpCustomHost() {
  const HostList found = mainController_->foundHosts();
  mainController_->customHostRemoved(customHost_);
  customHost_.reset();
  for (const auto& host : found) host->setHostIsSelected(true);
}

void HostsController::proceedInBranch(std::int32_t /*direction*/) {
  willChangeValueForKey("customPath");
  willChangeValueForKey("customPath64");
  mainController_->willChangeValueForKey("enableForward");
  if (screen_ == Screen::custom) {
    show(Screen::list);
    mainController_->setIsCustomInstallChosen(false);
  } else {
    if (customInstallView_ == nullptr && !loadCustomScreen()) return;
    show(Screen::custom);
  }
  didChangeValueForKey("customPath");
  didChangeValueForKey("customPath64");
  mainController_->didChangeValueForKey("enableForward");
}

bool HostsController::loadCustomScreen() {
  if (scriptsOrPanelsHosts().empty()) installScriptsAndPanelsChosen_ = false;
  const auto parent = view_ != nullptr ? view_->superview() : nullptr;
  if (parent == nullptr) {
    platform_.log.write("There is no place for the view of CustomInstall");
    return false;
  }
  auto loaded = platform_.toolkit.loadInterface("CustomInstall", *this);
  if (!loaded) {
    platform_.log.write(loaded.error().description());
    return false;
  }
  auto customView = (*loaded)->view("customInstallView");
  if (customView == nullptr) {
    platform_.log.write("There is no customInstallView in CustomInstall");
    return false;
  }
  customInterface_ = std::move(*loaded);
  customInstallView_ = std::move(customView);
  parent->addSubview(customInstallView_);
  return true;
}

void HostsController::show(Screen screen) {
  setHidden(screen == Screen::custom ? view_ : customInstallView_, true);
  screen_ = screen;
  setHidden(currentView(), false);
}

void HostsController::browseButtonPressed(const std::string& /*sender*/) {
  const auto chosen = platform_.toolkit.runOpenPanel(browsePanel());
  if (!chosen) return;
  willChangeValueForKey("customPath");
  mainController_->willChangeValueForKey("enableForward");
  mainController_->willChangeValueForKey("foundHosts");  // the list tells the folder, too
  if (customHost_ != nullptr) customHost_->setPlugInPath(*chosen);
  didChangeValueForKey("customPath");
  mainController_->didChangeValueForKey("enableForward");
  mainController_->didChangeValueForKey("foundHosts");
}

OpenPanel HostsController::browsePanel() const {
  const Bundle& bundle = platform_.bundles.mainBundle();
  const std::string folder = customHost_ != nullptr ? customHost_->plugInPath() : "";
  return {.title = bundle.localizedString("browse_path_title"),
          .message = bundle.localizedString("browse_path_msg"),
          .prompt = bundle.localizedString("browse_path_prompt"),
          .startFolder = !folder.empty() ? folder : platform_.folders.homeDirectory(),
          .shouldShowFilename = [this](const std::string& path) { return panel(path); }};
}

bool HostsController::panel(const std::string& shouldShowFilename) const {
  const auto attributes = platform_.files.attributesOfItem(shouldShowFilename);
  if (!attributes || attributes->type != ItemType::folder) return false;
  return !platform_.files.exists(joinPath(shouldShowFilename, "Contents"));
}

void HostsController::checkboxClicked(const std::string& /*sender*/) {
  mainController_->willChangeValueForKey("enableForward");
  mainController_->didChangeValueForKey("enableForward");
  if (!mainController_->isCustomInstallChosen()) return;
  mainController_->setIsCustomInstallChosen(false);
  mainController_->setIsCustomInstallAllowed(false);
}
