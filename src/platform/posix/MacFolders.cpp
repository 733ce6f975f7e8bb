// SPDX-License-Identifier: Apache-2.0

#include "platform/posix/MacFolders.h"

#include "foundation/Path.h"

std::string MacFolders::userApplicationSupport() const { return joinPath(home_, "Library/Application Support"); }

std::optional<std::string> MacFolders::findUserPreferences() const {
  return whenThere(joinPath(home_, "Library/Preferences"));
}

std::optional<std::string> MacFolders::findUserApplicationSupport() const {
  return whenThere(userApplicationSupport());
}

std::optional<std::string> MacFolders::whenThere(std::string path) const {
  if (!files_.exists(path)) return std::nullopt;
  return path;
}
