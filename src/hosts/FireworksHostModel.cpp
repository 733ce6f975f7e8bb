// SPDX-License-Identifier: Apache-2.0

#include "hosts/FireworksHostModel.h"

#include "foundation/Path.h"

std::shared_ptr<FireworksHostModel> FireworksHostModel::initWithHostName(Platform& platform, std::string name) {
  auto model = std::shared_ptr<FireworksHostModel>(new FireworksHostModel(platform));
  model->initPaths(name);
  model->hostName_ = std::move(name);
  return model;
}

void FireworksHostModel::initPaths(const std::string& name) {
  plugInPath_ = joinPath({platform_.folders.localApplications(), name, "Plug-Ins"});
  panelsPath_ = plugInPath_;
  scriptsPath_ = plugInPath_;
}

bool FireworksHostModel::hostIsInstalled() const { return platform_.files.exists(plugInPath_); }

Value FireworksHostModel::valueForKey(std::string_view key) const {
  return key == "hostIs64Bit" ? Value(hostIs64Bit()) : HostModel::valueForKey(key);
}
