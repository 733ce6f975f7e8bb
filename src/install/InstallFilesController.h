// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "contract/SetupMainController.h"
#include "contract/SetupStepController.h"
#include "foundation/Value.h"
#include "hosts/HostModel.h"
#include "install/InstallFilesModel.h"
#include "install/InstallPace.h"
#include "install/InstallPlanner.h"
#include "install/InstallProgress.h"
#include "install/InstallReport.h"
#include "install/ItemInstaller.h"
#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// The install page, and the install itself, which also runs without a page. Everything happens on the main thread;
/// callers must tolerate re-entrancy through the run loop, which is run where something is shown.
class InstallFilesController : public SetupStepController, private InstallListener {
 public:
  explicit InstallFilesController(Platform& platform)
      : platform_(platform), tools_(platform), installer_(platform, tools_, *this, report_) {}

  // The page. Going forward to it installs, and then moves on by itself.
  [[nodiscard]] bool enableForward() const override { return !copyInProgress_; }
  [[nodiscard]] bool enableBackward() const override { return !copyInProgress_; }
  [[nodiscard]] bool canProceed(std::int32_t /*direction*/) override { return !copyInProgress_; }
  void didProceed(std::int32_t delta) override;
  void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                         SetupMainController* withMainController, std::int32_t direction) override;

  /// Whether the last install put everything in place.
  [[nodiscard]] bool successfulInstall() const { return installComplete_ && !authDenied(); }

  /// Progress of the install on the page, from 0 to 1. Never decreases during an install.
  [[nodiscard]] double progress() const { return shownProgress_; }

  /// How far it has come, in words: megabytes, and the time that is left.
  [[nodiscard]] std::string statusText() const;

  /// Asks the person whether to stop an install that is under way. True when it stops, without having changed anything;
  /// false when the person wants to go on, when another question is open, or when there are changes already.
  [[nodiscard]] bool askToStop();

  /// Runs the whole install. What went wrong shows in authDenied(), fileOpErrorOccurred() and the report.
  void install(const HostList& hosts, bool shouldConfigureLumatraExternalEditors);

  /// Rights were refused, or the user cancelled; nothing was changed.
  [[nodiscard]] bool authDenied() const { return tools_.isDenied(); }
  /// Something was not installed; no further host is served.
  [[nodiscard]] bool fileOpErrorOccurred() const { return fileOpErrorOccurred_; }
  [[nodiscard]] const InstallReport& report() const { return report_; }
  /// Every path installed, in order.
  [[nodiscard]] const std::vector<std::string>& installedPaths() const { return report_.installedPaths; }

  /// Obtains administrator rights unless they are held. Returns false when they are not available. The operations below
  /// need them.
  [[nodiscard]] bool obtainAuthorization() { return tools_.obtain(); }

  void setInProgress(bool inProgress);
  void setInstallComplete(bool complete) { installComplete_ = complete; }
  /// Shows the text on the page and lets the window draw it.
  void setUIText(const std::string& text);

  // Copying. Each of these installs by itself, as an install of its own.
  /// The payload that belongs to no host, from the bundle's mirror of the boot volume.
  void installFiles() { run(planner().planHostIndependent(selectedHosts())); }
  /// The host's payload.
  void installFiles(const std::shared_ptr<HostModel>& host) { run(planner().planHost(host)); }
  /// Every package and every file below `from`, hidden ones left out, to the same place below `to`; replaces what is
  /// there.
  void copyHostFilesFrom(const std::string& from, const std::string& to) { run(planner().planHostFiles(from, to)); }
  /// The items into the folder `toPath`. An item that is there already is replaced when `alwaysInstall` is set, or when
  /// the new one is not older (by version for bundles, else by date). One that cannot be installed is reported, and the
  /// others go on.
  void installSourceFiles(const std::vector<std::string>& sources, const std::string& toPath, bool isBundle,
                          bool alwaysInstall) {
    run(planner().planSourceFiles(sources, toPath, isBundle, alwaysInstall));
  }
  void ensureDirExists(const std::string& path);
  [[nodiscard]] bool isFileOkToInstallByBundleVersion(const std::string& source, const std::string& alreadyThere) const;
  [[nodiscard]] bool isFileOkToInstallByModificationTime(const std::string& source,
                                                         const std::string& alreadyThere) const;
  [[nodiscard]] static bool isFatalAuthCode(std::int32_t code) { return PrivilegedTools::isFatalAuthCode(code); }
  void setAttributesRecursive(const std::string& path, const OwnershipAndMode& attributes);

  // Tasks around the copying; see tasks/.
  void configureLumatraExternalEditors();
  void cleanManifests();
  void runLsregister();
  void logInstalledPaths();
  /// Makes one installed application known to the system, and removes its download-quarantine mark.
  void registerInstalledApplication(const std::string& path);

  // Tasks that the sequence leaves out, or does where the maker's configuration says so.
  void unInstallForHost(const HostModel& host);
  void installAnalytics();
  /// For a file operation that asks how to go on after an error, which it describes under "Error" and "Path": shows it,
  /// notes that a file failed, and returns whether the user wants to go on.
  bool fileManager(const FileSystem& manager, const Value::Dictionary& shouldProceedAfterError);
  /// Reports that a file could not be installed.
  void showFileErrorUI(const std::string& path);

 private:
  void itemBegins(const PlannedItem& item) override;
  void itemFailed(const std::string& path, const Error& reason) override;
  void progressed(const InstallProgress& progress) override;
  [[nodiscard]] bool hasFailed() const override { return fileOpErrorOccurred_; }
  [[nodiscard]] bool wantsToStop() const override { return isStopWanted_; }

  void run(const InstallPlan& plan);
  void begin();
  [[nodiscard]] bool lockVolume();
  void registerApplications(const InstallPlan& plan);
  void runMakersTasks(const HostList& hosts);
  void removeEarlierInstalls(const HostModel& host);
  AlertAnswer ask(const Alert& alert);
  void noteShortage();
  void noteUnreadable();
  [[nodiscard]] HostList selectedHosts() const;
  [[nodiscard]] InstallPlanner planner() { return {platform_, {.hasPage = mainController_ != nullptr}}; }
  void announce(std::initializer_list<std::string_view> keys, const std::function<void()>& change);
  [[nodiscard]] std::string localized(std::string_view key) const;

  Platform& platform_;
  bool copyInProgress_ = false;
  bool installComplete_ = false;
  bool fileOpErrorOccurred_ = false;
  std::shared_ptr<InstallFilesModel> model_;
  SetupMainController* mainController_ = nullptr;
  std::shared_ptr<View> view_;
  PrivilegedTools tools_;
  InstallReport report_;
  ItemInstaller installer_;
  double shownProgress_ = 0;
  InstallProgress progress_;
  InstallPace pace_;
  bool isStopWanted_ = false;
  int alerts_ = 0;  ///< that are open
};
