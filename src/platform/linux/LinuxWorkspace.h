// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/Log.h"
#include "platform/Workspace.h"
#include "platform/files/PosixFileSystem.h"
#include "platform/files/Volume.h"
#include "platform/processes/ApplicationWatch.h"
#include "platform/processes/DescriptorRunLoop.h"
#include "platform/processes/UserSession.h"

/// Applications are programs in the Contents/MacOS folder of a bundle, wherever on this system it lies; their display
/// name is what the bundle calls itself, else its file name. Those that are launched are on the target volume.
class LinuxWorkspace : public Workspace {
 public:
  LinuxWorkspace(const Volume& volume, const FileSystem& files, const Bundles& bundles, const PosixUser& user, Log& log,
                 DescriptorRunLoop& runLoop, UserSession session, std::string urlOpener = "/usr/bin/xdg-open");

  [[nodiscard]] std::vector<std::string> launchedApplications() const override;
  /// See ApplicationWatch for which applications are observed.
  [[nodiscard]] Observation observeTerminations(TerminationHandler handler) override;
  [[nodiscard]] Observation observeLaunches(LaunchHandler handler) override;
  std::unique_ptr<RunningApplication> launchHidden(const std::string& path,
                                                   const std::vector<std::string>& arguments) override;
  void openUrl(const std::string& url) override;
  void openItem(const std::string& path) override;
  [[nodiscard]] std::string iconFile(const std::string& path) const override;

 private:
  [[nodiscard]] std::string nameOfBundle(const std::string& realPath) const;

  const Volume& volume_;
  const FileSystem& files_;
  const Bundles& bundles_;
  const PosixUser& user_;
  Log& log_;
  Volume system_;  ///< this system itself, where the applications run
  PosixFileSystem systemFiles_;
  UserSession session_;
  std::string urlOpener_;
  std::shared_ptr<ApplicationWatch> watch_;
};
