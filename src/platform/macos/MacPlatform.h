// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/SystemPlatform.h"
#include "platform/files/Places.h"
#include "platform/files/PosixFileSystem.h"
#include "platform/files/Volume.h"
#include "platform/macos/MacAuthorization.h"
#include "platform/macos/MacLaunchServices.h"
#include "platform/macos/MacWorkspace.h"
#include "platform/posix/CpuidProcessor.h"
#include "platform/posix/MacFolders.h"
#include "platform/posix/PosixClock.h"
#include "platform/posix/PosixIdentifiers.h"
#include "platform/posix/PosixUser.h"
#include "platform/posix/SystemLog.h"
#include "platform/processes/FolderQuery.h"
#include "platform/processes/PosixTasks.h"
#include "platform/processes/SignalInterruptions.h"
#include "platform/propertylist/BundlesOnDisk.h"
#include "platform/window/WindowModule.h"

/// macOS, installing into the running system or into another volume.
class MacPlatform : public SystemPlatform {
 public:
  /// Makes the interface to the person, which must not be null.
  using MakeInterface = std::function<std::unique_ptr<UserInterface>(const WindowServices& services)>;

  /// The path is real and without links; `languages` as User::preferredLanguages() has them.
  MacPlatform(Volume volume, const std::string& bundlePath, UserAccount user, std::vector<std::string> languages,
              const MakeInterface& makeInterface, Surface surface = Surface::console);

  [[nodiscard]] Platform& platform() override { return platform_; }
  [[nodiscard]] std::string shownPath(const std::string& path) const override;
  [[nodiscard]] const Volume& volume() const { return volume_; }

 private:
  [[nodiscard]] std::unique_ptr<Preferences> makePreferences();

  PosixUser user_;
  SystemLog log_;
  Volume volume_;
  Places places_;
  PosixFileSystem files_;
  MacFolders folders_;
  BundlesOnDisk bundles_;
  std::unique_ptr<Preferences> preferences_;
  MacAuthorizations authorizations_;
  std::unique_ptr<UserInterface> interface_;
  SignalInterruptions interruptions_;
  NotificationCenter notifications_;
  PosixTasks tasks_;
  MacLaunchServices launchServices_;
  FolderQueries metadataQueries_;
  MacWorkspace workspace_;
  CpuidProcessor processor_;
  PosixIdentifiers identifiers_;
  PosixClock clock_;
  Platform platform_;
};
