// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/FileSystem.h"
#include "platform/Folders.h"

/// The folders of a Mac volume, where every Mac has them.
class MacFolders : public Folders {
 public:
  MacFolders(const FileSystem& files, std::string homeDirectory) : files_(files), home_(std::move(homeDirectory)) {}

  [[nodiscard]] std::string homeDirectory() const override { return home_; }
  [[nodiscard]] std::string localApplications() const override { return "/Applications"; }
  [[nodiscard]] std::string localApplicationSupport() const override { return "/Library/Application Support"; }
  [[nodiscard]] std::string userApplicationSupport() const override;
  [[nodiscard]] std::optional<std::string> findUserPreferences() const override;
  [[nodiscard]] std::optional<std::string> findUserApplicationSupport() const override;

 private:
  [[nodiscard]] std::optional<std::string> whenThere(std::string path) const;

  const FileSystem& files_;
  std::string home_;
};
