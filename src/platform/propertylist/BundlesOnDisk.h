// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "platform/propertylist/MainBundle.h"

class BundlesOnDisk : public Bundles {
 public:
  BundlesOnDisk(const std::string& mainBundlePath, const FileSystem& files, const User& user, Log& log)
      : files_(files), user_(user), log_(log), mainBundle_(mainBundlePath, files, user, log) {}

  [[nodiscard]] const Bundle& mainBundle() const override { return mainBundle_; }
  [[nodiscard]] std::unique_ptr<Bundle> bundleAtPath(const std::string& path) const override {
    if (!files_.contentsOfDirectory(path)) return nullptr;
    return std::make_unique<BundleOnDisk>(path, files_, user_, log_);
  }

 private:
  const FileSystem& files_;
  const User& user_;
  Log& log_;
  MainBundle mainBundle_;
};
