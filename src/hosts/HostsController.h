// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "contract/SetupMainController.h"
#include "contract/SetupStepController.h"
#include "hosts/HostsModel.h"
#include "hosts/UnknownHostModel.h"
#include "platform/InterfaceOwner.h"
#include "platform/Platform.h"

/// The page on which the hosts are chosen, from the list of those found; or none of them, and a folder instead. That is
/// the custom host, and its screen is made from the interface description "CustomInstall" when it is first needed. This
/// is that description's owner:
///
///     shown     customPath, scriptsOrPanelsHosts, scriptsOrPanelsHostsExsist, and the texts of the screen by the names
///               that they have in the model
///     set, too  installScriptsAndPanelsChosen, installPluginForCustomInstall, installPlugin64ForCustomInstall
///     actions   buttonPressed:, browseButtonPressed:, checkboxClicked:
///
/// Its view with the name "customInstallView" becomes a neighbour of the list's.
class HostsController : public SetupStepController, public SetupStepButtons, public InterfaceOwner {
 public:
  explicit HostsController(Platform& platform) : platform_(platform) {}

  // The page.
  [[nodiscard]] bool enableForward() const override;
  [[nodiscard]] bool enableBackward() const override { return enableBackward_; }
  [[nodiscard]] bool canProceed(std::int32_t /*direction*/) override { return true; }
  /// Tells the custom host what was ticked, and keeps its folder in the preferences.
  void didProceed(std::int32_t delta) override;
  /// The model is a HostsModel. Without a host the custom screen opens, or, where that is not to be had, the next page.
  void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                         SetupMainController* withMainController, std::int32_t direction) override;

  /// The screen that is shown; null before the page has been entered, and where the description has no view for it.
  [[nodiscard]] std::shared_ptr<View> currentView() const;

  // The two screens.

  /// The list's button that opens the custom screen.
  void buttonPressed(const std::string& sender) override;
  /// On the custom screen, back leads to the list.
  [[nodiscard]] bool overrideBackButton(const std::string& sender) override;
  /// Whether going on, or back when negative, would stay inside this page.
  [[nodiscard]] bool willBranch(std::int32_t direction) const;
  /// Changes over to the other screen, whatever the direction. A custom screen that cannot be loaded leaves all as it
  /// is, and the changes that were announced open.
  void proceedInBranch(std::int32_t direction);
  /// Opens the custom screen with the remembered folder as the only selected host; where there is no such screen, all
  /// stays as it was.
  void goToCustomScreen();
  /// Back to the list, without the custom host and with every host selected.
  void undoCustomScreen();

  // The custom screen.
  void browseButtonPressed(const std::string& sender);
  /// Leaves custom install and disallows it, where it is chosen; has the window look at the forward button again.
  void checkboxClicked(const std::string& sender);
  void setInstallScriptsAndPanelsChosen(bool chosen);
  void setInstallPluginForCustomInstall(bool install);
  [[nodiscard]] bool installScriptsAndPanelsChosen() const { return installScriptsAndPanelsChosen_; }
  [[nodiscard]] bool installPluginForCustomInstall() const { return installPluginForCustomInstall_; }
  /// The custom host's folder; empty while the plug-in is not to go there.
  [[nodiscard]] std::string customPath() const;
  /// Hosts to take the scripts and panels from; there are none, see HostsModel.
  [[nodiscard]] HostList scriptsOrPanelsHosts() const;
  [[nodiscard]] bool scriptsOrPanelsHostsExsist() const { return false; }
  /// What the browse panel offers: folders, but none that is a bundle.
  [[nodiscard]] bool panel(const std::string& shouldShowFilename) const;

  [[nodiscard]] std::optional<ShownValue> shownValue(std::string_view key) const override;
  bool setShownValue(std::string_view key, const ShownValue& value) override;
  bool setTicked(std::string_view key, std::size_t row, bool isTicked) override;
  bool performAction(std::string_view action, const std::string& sender) override;

 private:
  struct Tables;  ///< of what is shown and set, by name

  enum class Screen { none, list, custom };

  void openCustomScreenOnEntry();
  void makeCustomHost();
  [[nodiscard]] bool loadCustomScreen();
  void giveUpCustomHost();
  void show(Screen screen);
  [[nodiscard]] OpenPanel browsePanel() const;
  [[nodiscard]] bool installPlugin64ForCustomInstall() const { return installPlugin64ForCustomInstall_; }
  void setInstallPlugin64ForCustomInstall(bool install) { installPlugin64ForCustomInstall_ = install; }
  [[nodiscard]] std::vector<ListRow> scriptsOrPanelsRows() const;
  /// A text of the model; empty while the page is left, which has none then.
  template <const std::string& (HostsModel::*text)() const>
  [[nodiscard]] std::string modelText() const {
    return model_ != nullptr ? ((*model_).*text)() : std::string();
  }

  Platform& platform_;
  bool enableForward_ = true;
  bool enableBackward_ = true;
  std::shared_ptr<HostsModel> model_;
  SetupMainController* mainController_ = nullptr;  // not owned
  std::shared_ptr<View> view_;
  Screen screen_ = Screen::none;
  std::unique_ptr<Interface> customInterface_;
  std::shared_ptr<View> customInstallView_;
  bool installScriptsAndPanelsChosen_ = false;
  bool installPluginForCustomInstall_ = true;
  bool installPlugin64ForCustomInstall_ = false;
  std::shared_ptr<UnknownHostModel> customHost_;
};
