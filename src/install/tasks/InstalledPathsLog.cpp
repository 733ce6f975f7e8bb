#include <string>

#include "install/InstallFilesController.h"
#include "payload/PlugInFilesModel.h"

void InstallFilesController::logInstalledPaths() {
  isLogWritten_ = false;
  if (installedPaths_.empty()) return;
  const std::string path = PlugInFilesModel(platform_).installerLogPath();
  std::string text;
  for (const std::string& installed : installedPaths_) text.append(installed).append("\n");
  runToolIgnoringResult("/bin/rm", {"-fR", path});
  isLogWritten_ = writeFileForUser({.path = path,
                                    .chmodTool = "/usr/sbin/chmod",
                                    .mode = "0644",
                                    .cannotOpen = "can't open installer log file for writing",
                                    .cannotWrite = "can't write to installer log file: %@"},
                                   text);
}
