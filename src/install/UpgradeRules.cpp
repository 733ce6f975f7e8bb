// SPDX-License-Identifier: Apache-2.0

#include "install/UpgradeRules.h"

#include "install/BundleVersion.h"

bool isFileOkToInstallByBundleVersion(const Platform& platform, const std::string& source,
                                      const std::string& alreadyThere) {
  if (!platform.files.exists(alreadyThere)) return true;
  const auto installed = platform.bundles.bundleAtPath(alreadyThere);
  if (installed == nullptr) return true;
  const auto offered = platform.bundles.bundleAtPath(source);
  if (offered == nullptr) return false;
  const auto offeredVersion = versionFromBundle(*offered);
  if (!offeredVersion) return false;
  const auto installedVersion = versionFromBundle(*installed);
  return !installedVersion || *offeredVersion >= *installedVersion;
}

bool isFileOkToInstallByModificationTime(const Platform& platform, const std::string& source,
                                         const std::string& alreadyThere) {
  if (!platform.files.exists(alreadyThere)) return true;
  const auto installed = platform.files.attributesOfItem(alreadyThere);
  if (!installed) return true;
  if (installed->type == ItemType::folder) {
    const auto names = platform.files.contentsOfDirectory(alreadyThere);
    if (names && names->empty()) return true;
  }
  const auto offered = platform.files.attributesOfItem(source);
  return !offered || offered->modificationNanoseconds >= installed->modificationNanoseconds;
}
