#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "contract/SetupMainController.h"
#include "contract/SetupStepController.h"
#include "foundation/Result.h"
#include "hosts/HostModel.h"
#include "install/InstallFilesModel.h"
#include "install/InstallProgress.h"
#include "platform/Platform.h"

/// The install page, and the install itself, which also runs without a page. Everything happens on the main thread;
/// callers must stand being re-entered through the run loop, which is run where a text is shown.
///
/// Its operations are defined by topic: the page and the sequence in InstallFilesController.cpp, the copying in
/// FileInstallation.cpp, everything before and after it in tasks/.
class InstallFilesController : public SetupStepController {
 public:
  explicit InstallFilesController(Platform& platform) : platform_(platform) {}

  // The page. Going forward to it installs, and then moves on by itself.
  [[nodiscard]] bool enableForward() const override { return !copyInProgress_; }
  [[nodiscard]] bool enableBackward() const override { return !copyInProgress_; }
  [[nodiscard]] bool canProceed(std::int32_t /*direction*/) override { return !copyInProgress_; }
  void didProceed(std::int32_t delta) override;
  void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                         SetupMainController* withMainController, std::int32_t direction) override;

  /// Whether the last install put everything in place.
  [[nodiscard]] bool successfulInstall() const { return installComplete_ && !authDenied_; }

  /// How much of the install that the page shows is done, from 0 to 1.
  [[nodiscard]] double progress() const { return progress_.fraction(platform_.files.bytesCopied()); }

  /// Runs the whole install. What went wrong shows in authDenied() and fileOpErrorOccurred().
  void install(const HostList& hosts, bool shouldConfigureLumatraExternalEditors);

  /// A tool was refused its rights, or the user cancelled; nothing more is installed.
  [[nodiscard]] bool authDenied() const { return authDenied_; }
  /// Something was not installed, for want of rights or for any other reason; no further host is served.
  [[nodiscard]] bool fileOpErrorOccurred() const { return fileOpErrorOccurred_; }
  /// Every path installed, in order.
  [[nodiscard]] const std::vector<std::string>& installedPaths() const { return installedPaths_; }
  /// Every path that could not be installed, in order.
  [[nodiscard]] const std::vector<std::string>& failedPaths() const { return failedPaths_; }

  /// Whether the log file holds what installedPaths() tells.
  [[nodiscard]] bool isLogWritten() const { return isLogWritten_; }

  /// Gets hold of administrator rights, unless they are held already; false when they cannot be had. The operations
  /// below need them.
  [[nodiscard]] bool obtainAuthorization();

  void setInProgress(bool inProgress);
  void setInstallComplete(bool complete) { installComplete_ = complete; }
  /// Shows the text on the page and lets the window draw it.
  void setUIText(const std::string& text);

  // Copying.

  /// The payload that belongs to no host, from the bundle's mirror of the boot volume.
  void installFiles();
  /// The host's payload.
  void installFiles(const HostModel& host);
  /// Every package and every file below `from`, hidden ones left out, to the same place below `to`; replaces what is
  /// there.
  void copyHostFilesFrom(const std::string& from, const std::string& to);
  /// Installs the items into the folder `toPath`: copies, hands over to the user, notes the path. An item that is there
  /// already is replaced when `alwaysInstall` is set, or when the new one is not older (by version for bundles, else by
  /// date). Each item is all there or left as it was; one that cannot be installed is reported and the others go on.
  void installSourceFiles(const std::vector<std::string>& sources, const std::string& toPath, bool isBundle,
                          bool alwaysInstall);
  /// Makes the folder, and the one that it is in, and hands what it made to the user.
  void ensureDirExists(const std::string& path);
  [[nodiscard]] bool isFileOkToInstallByBundleVersion(const std::string& source, const std::string& alreadyThere) const;
  [[nodiscard]] bool isFileOkToInstallByModificationTime(const std::string& source,
                                                         const std::string& alreadyThere) const;
  /// Whether the code of a failed launch means that there are no rights to be had.
  [[nodiscard]] static bool isFatalAuthCode(std::int32_t code) { return code >= 5530 && code <= 5540; }
  void setAttributesRecursive(const std::string& path, const OwnershipAndMode& attributes);

  // Tasks around the copying.

  /// Lists the editors that Lumatra X offers: the newest Photoshop and the maker's applications that are present.
  void configureLumatraExternalEditors();
  /// Removes stale manifests from the maker's folder, for the applications to make them anew.
  void cleanManifests();
  /// Has the system's database of applications brought up to date; does not wait for it.
  void runLsregister();
  /// Registers one installed application and takes the download-quarantine mark off it and all that is in it.
  void registerInstalledApplication(const std::string& path);
  /// Writes installedPaths() to the log file; leaves an earlier one alone when there are none.
  void logInstalledPaths();

  // Tasks that the sequence leaves out; docs/operations.md tells how to put them in.

  /// Removes earlier copies of the plug-ins that the bundle's shared support names from the host's plug-in folder,
  /// however deep they lie there: whatever has exactly one of these names. Runs the run loop. Stops at once when there
  /// are no rights to be had, which authDenied() then tells; any other copy that cannot be removed stays.
  void unInstallForHost(const HostModel& host);
  /// Gives the machine its identifier for usage statistics, a random UUID in a file, unless there is one. The maker's
  /// folder must be there.
  void installAnalytics();

  /// For a file operation that asks how to go on after an error, which it describes under "Error" and "Path": shows it,
  /// notes that a file failed, and returns whether the user wants to go on.
  bool fileManager(const FileSystem& manager, const Value::Dictionary& shouldProceedAfterError);
  /// Reports that a file could not be installed.
  void showFileErrorUI(const std::string& path);

 private:
  // The page and the sequence.
  void announce(std::initializer_list<std::string_view> keys, const std::function<void()>& change);
  [[nodiscard]] std::string localized(std::string_view key) const;

  // What goes where.
  struct ProductFolder {
    std::vector<std::string> sources;
    std::string target;
  };
  struct HostFiles {
    std::vector<PlannedCopy> copies;
    std::vector<bool> arePackages;
  };
  [[nodiscard]] std::string hostIndependentPayload() const;
  [[nodiscard]] std::vector<PlannedCopy> hostIndependentPackages() const;
  [[nodiscard]] std::vector<ProductFolder> productFolders() const;
  /// Folders of the payload, and the host's folders that their content goes to.
  [[nodiscard]] std::vector<PlannedCopy> payloadOf(const HostModel& host) const;
  [[nodiscard]] HostFiles hostFilesFrom(const std::string& from, const std::string& to) const;

  // What the page shows of the progress.
  void planProgress(const HostList& hosts);
  void planProgressOf(const std::string& source);
  void showProgress();
  void endProgress();

  // Copying.
  enum class Outcome { installed, failed, denied };
  void installHostIndependentPackages();
  void installProductFolders();
  /// Puts one item in place and hands it over; false when there are no rights to be had.
  [[nodiscard]] bool installItem(const std::string& source, const std::string& target, bool isReplacing);
  [[nodiscard]] bool mayReplace(const std::string& source, const std::string& target, bool isBundle,
                                bool alwaysInstall) const;
  [[nodiscard]] Outcome putInPlace(const std::string& source, const std::string& target, bool isReplacing);
  [[nodiscard]] bool appearsInTime(const std::string& source, const std::string& target);
  [[nodiscard]] bool createFolderForUser(const std::string& path);
  [[nodiscard]] bool giveToUser(const std::string& path);
  void reportFailedFile(const std::string& path);
  [[nodiscard]] Alert fileErrorAlert(const std::string& errorText, const std::string& path) const;

  // Tools, with the install's rights, each waited for. False from the first two when there are no rights to be had,
  // which authDenied_ then tells, too. Any other failure of a tool shows on the disk.
  [[nodiscard]] bool runTool(const std::string& tool, const std::vector<std::string>& arguments);
  [[nodiscard]] bool runToolWithoutOutput(const std::string& tool, const std::vector<std::string>& arguments);
  [[nodiscard]] bool mayGoOnAfter(const std::optional<Error>& error);
  /// A file made with the install's rights for the user to write.
  struct FileForUser {
    std::string path;
    std::string chmodTool;
    std::string mode;
    std::string_view cannotOpen;   ///< line for the log
    std::string_view cannotWrite;  ///< format for the log, of the reason
  };
  /// Makes the file, or takes over the one that is there, and writes the text at its start. Of what goes wrong only the
  /// writing is told, in the log.
  /// Whether the text is in the file; why not is in the log.
  bool writeFileForUser(const FileForUser& file, std::string_view text);
  void runToolIgnoringResult(const std::string& tool, const std::vector<std::string>& arguments);
  [[nodiscard]] std::string ownerText() const;

  Platform& platform_;
  bool copyInProgress_ = false;
  bool installComplete_ = false;
  bool authDenied_ = false;
  bool fileOpErrorOccurred_ = false;
  std::shared_ptr<InstallFilesModel> model_;
  SetupMainController* mainController_ = nullptr;
  std::shared_ptr<View> view_;
  std::unique_ptr<Authorization> authorization_;
  std::vector<std::string> installedPaths_;
  std::vector<std::string> failedPaths_;
  bool isLogWritten_ = false;
  mutable InstallProgress progress_;
};
