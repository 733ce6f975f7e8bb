// SPDX-License-Identifier: Apache-2.0

#include "install/tasks/ManifestCleaning.h"

#include <string>
#include <string_view>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "payload/InstallerTexts.h"

namespace {

/// Folders below the maker's folder to be cleaned, separated by ";". Its one entry is empty: the folder itself.
constexpr std::string_view manifestFolders;

}  // namespace

void cleanManifests(Platform& platform) {
  const std::string company = companyName(platform);
  if (company.empty()) {
    // Without the name, this would remove the manifests of all makers.
    platform.log.write("The strings table has no company_name: manifests are not cleaned");
    return;
  }
  const std::string base = joinPath(platform.folders.userApplicationSupport(), company);
  for (const std::string_view folder : split(manifestFolders, ';')) {
    const auto visit = [&](const WalkedItem& item) {
      if (item.type != ItemType::regularFile || lastPathComponent(item.path) != "manifest.xml") return;
      ignore(platform.files.removeItem(item.path));
    };
    // Ignore failures: a stale manifest only costs the application some time.
    platform.files.walk(joinPath(base, folder), {.visit = visit, .unreadable = [](const Error& /*error*/) {}});
  }
}
