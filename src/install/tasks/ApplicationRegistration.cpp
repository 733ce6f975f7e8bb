#include <cstdint>
#include <string>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/InstallFilesController.h"
#include "install/launching/OneLineTasksWithOutput.h"

void InstallFilesController::runLsregister() {
  constexpr const char* lsregister =
      "/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/"
      "Support/lsregister";
  // Nobody waits for it and a failure changes nothing: the system brings its database up to date sooner or later
  // itself.
  static_cast<void>(
      OneLineTasksWithOutput::stringByLaunchingPath(lsregister, {"-apps"}, *authorization_, /*wait=*/false));
}

void InstallFilesController::registerInstalledApplication(const std::string& path) {
  const std::int32_t result = platform_.launchServices.registerApplication(path, /*update=*/true);
  if (result != LaunchServices::noErr) {
    platform_.log.write(formatted("LSRegisterURL returned %d for %@", std::to_string(result), fileUrl(path)));
  }
  runToolIgnoringResult("/usr/bin/xattr", {"-dr", "com.apple.quarantine", path});
}
