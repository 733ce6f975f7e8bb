#include "foundation/Format.h"
#include "install/InstallFilesController.h"

bool InstallFilesController::fileManager(const FileSystem& /*manager*/,
                                         const Value::Dictionary& shouldProceedAfterError) {
  fileOpErrorOccurred_ = true;
  const std::string error = entryOf(shouldProceedAfterError, "Error").text();
  const std::string path = entryOf(shouldProceedAfterError, "Path").text();
  failedPaths_.push_back(path);
  // The two blanks are the message that support staff look for.
  platform_.log.write(formatted("File  operation error: %@ with file: %@", error, path));
  Alert alert = fileErrorAlert(error, path);
  alert.alternateButton = localized("install_error_stop");
  return platform_.toolkit.runAlertPanel(alert) == AlertAnswer::defaultButton;
}

void InstallFilesController::showFileErrorUI(const std::string& path) { reportFailedFile(path); }

void InstallFilesController::reportFailedFile(const std::string& path) {
  fileOpErrorOccurred_ = true;
  failedPaths_.push_back(path);
  platform_.log.write(formatted("Could not install file: %@", path));
  platform_.toolkit.runAlertPanel(fileErrorAlert("", path));
}

Alert InstallFilesController::fileErrorAlert(const std::string& errorText, const std::string& path) const {
  return {.title = localized("install_error_title"),
          .message = formatted(localized("install_error_format_string"), errorText, path),
          .defaultButton = localized("install_error_proceed")};
}
