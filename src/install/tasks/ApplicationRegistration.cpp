// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/ApplicationRegistration.h"

#include <cstdint>

#include "foundation/Format.h"
#include "foundation/Path.h"

void runLsregister(PrivilegedTools& tools) {
  constexpr const char* lsregister =
      "/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/"
      "Support/lsregister";
  // Nobody waits for it and a failure changes nothing: the system brings its database up to date sooner or later
  // itself.
  tools.start(lsregister, {"-apps"});
}

void registerApplication(Platform& platform, const std::string& path) {
  const std::int32_t result = platform.launchServices.registerApplication(path, /*update=*/true);
  if (result == LaunchServices::noErr) return;
  platform.log.write(formatted("LSRegisterURL returned %d for %@", std::to_string(result), fileUrl(path)));
}

void releaseFromQuarantine(PrivilegedTools& tools, const std::string& path) {
  tools.runIgnoringResult("/usr/bin/xattr", {"-dr", "com.apple.quarantine", path});
}
