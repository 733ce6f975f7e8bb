// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/AnalyticsIdentifier.h"

#include <string>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "install/tasks/FileForUser.h"
#include "payload/PlugInFilesModel.h"

std::string analyticsIdentifierFile(Platform& platform) {
  return joinPath(PlugInFilesModel(platform).companyAppSupportPath(), formatted("%@.guid", "entityresolver"));
}

void installAnalytics(Platform& platform, PrivilegedTools& tools) {
  const std::string path = analyticsIdentifierFile(platform);
  // Made once for good: whatever is there, an empty file included, is the machine's identifier.
  if (platform.files.exists(path)) return;
  writeFileForUser(platform, tools,
                   {.path = path,
                    .chmodTool = "/bin/chmod",
                    .mode = "0664",
                    .cannotOpen = "can't open guid file handle",
                    .cannotWrite = "can't write to guid file: %@"},
                   platform.identifiers.makeUuid() + "\n");
}
