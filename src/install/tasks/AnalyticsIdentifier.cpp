#include <string>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/InstallFilesController.h"
#include "payload/PlugInFilesModel.h"

void InstallFilesController::installAnalytics() {
  const std::string path =
      joinPath(PlugInFilesModel(platform_).companyAppSupportPath(), formatted("%@.guid", "entityresolver"));
  // Made once for good: whatever is there, an empty file included, is the machine's identifier.
  if (platform_.files.exists(path)) return;
  writeFileForUser({.path = path,
                    .chmodTool = "/bin/chmod",
                    .mode = "0664",
                    .cannotOpen = "can't open guid file handle",
                    .cannotWrite = "can't write to guid file: %@"},
                   platform_.identifiers.makeUuid() + "\n");
}
