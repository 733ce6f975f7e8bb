// SPDX-License-Identifier: Apache-2.0

#include "hosts/UnknownHostModel.h"

std::shared_ptr<UnknownHostModel> UnknownHostModel::initWithPlugInPath(Platform& platform, std::string path) {
  return std::shared_ptr<UnknownHostModel>(new UnknownHostModel(platform, std::move(path)));
}

std::string UnknownHostModel::hostName() const { return platform_.bundles.mainBundle().localizedString("custom_path"); }
