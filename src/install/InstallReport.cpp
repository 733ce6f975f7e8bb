// SPDX-License-Identifier: Apache-2.0

#include "install/InstallReport.h"

#include <set>
#include <string_view>

std::size_t InstallReport::placeCount() const {
  return std::set<std::string_view>(installedPaths.begin(), installedPaths.end()).size();
}

std::string InstallReport::folderOfHost(std::size_t host, const std::string& usual) const {
  std::string folder;
  for (std::size_t i = 0; i < installedPaths.size() && i < hostsOfPaths.size(); ++i) {
    if (hostsOfPaths[i] != host + 1) continue;
    if (!usual.empty() && installedPaths[i].starts_with(usual + "/")) return usual;
    if (folder.empty()) folder = installedPaths[i].substr(0, installedPaths[i].rfind('/'));
  }
  return folder;
}
