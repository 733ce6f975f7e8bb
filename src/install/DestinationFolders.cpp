// SPDX-License-Identifier: Apache-2.0

#include "install/DestinationFolders.h"

#include "foundation/Path.h"

namespace {

constexpr std::uint32_t installedMode = 0775;

bool createFolderForUser(Platform& platform, PrivilegedTools& tools, const std::string& path) {
  if (platform.files.createDirectory(path, installedMode)) return giveToUser(platform, tools, path);
  return tools.runWithoutOutput("/bin/mkdir", {"-m775", "-p", path}) &&
         tools.runWithoutOutput("/usr/sbin/chown", {"-R", tools.ownerText(), path});
}

}  // namespace

void ensureDirExists(Platform& platform, PrivilegedTools& tools, const std::string& path) {
  if (platform.files.exists(path)) return;
  const std::string parent = deletingLastPathComponent(path);
  if (!platform.files.exists(parent) && !createFolderForUser(platform, tools, parent)) return;
  static_cast<void>(createFolderForUser(platform, tools, path));
}

void setAttributesRecursive(Platform& platform, const std::string& path, const OwnershipAndMode& attributes) {
  const auto before = platform.files.attributesOfItem(path);
  ignore(platform.files.setAttributes(path, attributes));  // what is not ours to change stays as it is
  if (!before || before->type != ItemType::folder) return;
  for (const std::string& name : platform.files.contentsOfDirectory(path).valueOr({})) {
    setAttributesRecursive(platform, joinPath(path, name), attributes);
  }
}

bool giveToUser(Platform& platform, PrivilegedTools& tools, const std::string& path) {
  if (platform.files.setAttributes(path, {.owner = platform.user.shortName(), .group = "admin"})) return true;
  // Who is not of the group cannot give anything to it.
  return tools.runWithoutOutput("/usr/sbin/chown", {"-R", tools.ownerText(), path});
}
