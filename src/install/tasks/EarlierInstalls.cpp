// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/EarlierInstalls.h"

#include <string>
#include <vector>

#include "foundation/Format.h"
#include "payload/PlugInFilesModel.h"

void unInstallForHost(Platform& platform, PrivilegedTools& tools, const HostModel& host,
                      const std::function<bool(const std::string& path)>& isKept) {
  const PlugInFilesModel paths(platform);
  std::vector<std::string> names;
  for (const std::string& folder : {paths.getPlugInDirInBundle(), paths.getAutoLayerDirInBundle()}) {
    const auto entries = platform.files.contentsOfDirectory(folder).valueOr({});
    names.insert(names.end(), entries.begin(), entries.end());
  }

  const auto query = platform.metadataQueries.makeQuery();
  for (const std::string& name : names) {
    const Value value(name);
    query->setPredicate(Predicate::parse("(kMDItemFSName LIKE %@)", {&value, 1}));
    query->setSearchScopes({host.plugInPath()});
    if (!query->startQuery()) continue;
    do {
      platform.runLoop.runBeforeDate(RunLoop::Clock::now());
    } while (query->isGathering());
    const std::size_t count = query->resultCount();
    query->stopQuery();
    for (std::size_t i = 0; i < count; ++i) {
      const std::string found = query->valueOfAttribute(kMDItemFSName, i);
      const std::string path = query->valueOfAttribute(kMDItemPath, i);
      // A name with "*" or "?" in it finds others, too, and those are not ours to remove.
      if (found == name && isKept(path)) continue;
      if (found == name && !tools.run("/bin/rm", {"-fR", path})) return;
      platform.log.write(formatted("found %@ at %@", found, path));
    }
  }
}
