// SPDX-License-Identifier: Apache-2.0

#include "hosts/ApertureHostModel.h"

#include "foundation/Path.h"
#include "payload/PlugInFilesModel.h"

std::shared_ptr<ApertureHostModel> ApertureHostModel::initWithHostName(Platform& platform, std::string name) {
  const std::string pluginFolder = PlugInFilesModel(platform).apertureUserPluginDir();
  const bool isInstalled = platform.files.exists(deletingLastPathComponent(pluginFolder));
  return std::shared_ptr<ApertureHostModel>(new ApertureHostModel(std::move(name), isInstalled));
}
