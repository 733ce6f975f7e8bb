// SPDX-License-Identifier: Apache-2.0

#include "hosts/UserDirectories.h"

std::optional<std::string> NSUserPreferencesDirectory(const Platform& platform) {
  return platform.folders.findUserPreferences();
}

std::optional<std::string> ApplicationSupportDirectory(const Platform& platform) {
  return platform.folders.findUserApplicationSupport();
}
