// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/Workspace.h"
#include "platform/files/Volume.h"

/// Applications as the system's own workspace knows them. News of them arrive while the main thread's run loop runs.
class MacWorkspace : public Workspace {
 public:
  MacWorkspace(const Volume& volume, const FileSystem& files, const Bundles& bundles)
      : volume_(volume), files_(files), bundles_(bundles) {}

  [[nodiscard]] std::vector<std::string> launchedApplications() const override;
  [[nodiscard]] Observation observeTerminations(TerminationHandler handler) override;
  [[nodiscard]] Observation observeLaunches(LaunchHandler handler) override;
  std::unique_ptr<RunningApplication> launchHidden(const std::string& path,
                                                   const std::vector<std::string>& arguments) override;
  void openUrl(const std::string& url) override;
  void openItem(const std::string& path) override;
  [[nodiscard]] std::string iconFile(const std::string& path) const override;

 private:
  const Volume& volume_;
  const FileSystem& files_;
  const Bundles& bundles_;
};
