#include <string>

#include "foundation/Exception.h"
#include "foundation/Format.h"
#include "install/InstallFilesController.h"
#include "install/paths/PlugInFilesModel.h"

void InstallFilesController::logInstalledPaths() {
  if (installedPaths_.empty()) return;
  const std::string path = PlugInFilesModel(platform_).installerLogPath();
  runToolIgnoringResult("/bin/rm", {"-fR", path});
  runToolIgnoringResult("/usr/bin/touch", {path});
  runToolIgnoringResult("/usr/sbin/chown", {"-R", ownerText(), path});
  runToolIgnoringResult("/usr/sbin/chmod", {"-R", "0644", path});

  const auto file = platform_.files.openForWriting(path);
  if (!file) {
    platform_.log.write("can't open installer log file for writing");
    return;
  }
  std::string text;
  for (const std::string& installed : installedPaths_) text.append(installed).append("\n");
  try {
    (*file)->writeData(text);
  } catch (const Exception& exception) {
    platform_.log.write(formatted("can't write to installer log file: %@", exception.what()));
  }
}
