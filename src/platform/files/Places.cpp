// SPDX-License-Identifier: Apache-2.0

#include "platform/files/Places.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>

#include "foundation/Path.h"

Places::Places(const Volume& volume, const std::string& home, uid_t user) {
  const auto place = volume.find(home, Volume::LastLink::follow, Volume::Purpose::look);
  struct stat status {};
  if (!place || ::fstatat(place->folder.get(), place->name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (S_ISDIR(status.st_mode) && status.st_uid == user) paths_.push_back(place->resolved);
}

bool Places::cover(const std::string& resolved) const {
  return std::ranges::any_of(
      paths_, [&](const std::string& place) { return resolved != place && isAtOrBelow(resolved, place); });
}

bool Places::holdOne(const std::string& resolved) const {
  return std::ranges::any_of(paths_, [&](const std::string& place) { return isAtOrBelow(place, resolved); });
}
