// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/InstalledPathsLog.h"

#include "foundation/Path.h"
#include "install/DestinationFolders.h"
#include "install/tasks/FileForUser.h"
#include "payload/PlugInFilesModel.h"

bool logInstalledPaths(Platform& platform, PrivilegedTools& tools, const std::vector<std::string>& paths) {
  if (paths.empty()) return false;
  const std::string log = PlugInFilesModel(platform).installerLogPath();
  std::size_t length = 0;
  for (const std::string& path : paths) length += path.size() + 1;
  std::string text;
  text.reserve(length);  // the list of a large product is where the install needs the most memory
  for (const std::string& path : paths) text.append(path).append("\n");
  ensureDirExists(platform, tools, deletingLastPathComponent(log));
  return writeFileForUser(platform, tools,
                          {.path = log,
                           .chmodTool = "/usr/sbin/chmod",
                           .mode = "0644",
                           .cannotOpen = "can't open installer log file for writing",
                           .cannotWrite = "can't write to installer log file: %@"},
                          text);
}
