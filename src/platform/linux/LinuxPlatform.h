// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/SystemPlatform.h"
#include "platform/files/Places.h"
#include "platform/files/PosixFileSystem.h"
#include "platform/files/Volume.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/posix/CpuidProcessor.h"
#include "platform/posix/MacFolders.h"
#include "platform/posix/PosixClock.h"
#include "platform/posix/PosixIdentifiers.h"
#include "platform/posix/PosixUser.h"
#include "platform/posix/SystemLog.h"
#include "platform/processes/DesktopEntries.h"
#include "platform/processes/FolderQuery.h"
#include "platform/processes/PosixTasks.h"
#include "platform/processes/SignalInterruptions.h"
#include "platform/propertylist/BundlesOnDisk.h"
#include "platform/propertylist/PropertyListPreferences.h"
#include "platform/rights/LinuxAuthorization.h"
#include "platform/window/WindowModule.h"

/// Linux, installing into a Mac volume.
class LinuxPlatform : public SystemPlatform {
 public:
  /// Makes the interface to the person, which must not be null.
  using MakeInterface = std::function<std::unique_ptr<UserInterface>(const WindowServices& services)>;

  /// The path is real and without links.
  LinuxPlatform(Volume volume, const std::string& bundlePath, UserAccount user, const MakeInterface& makeInterface,
                Surface surface = Surface::console);

  [[nodiscard]] Platform& platform() override { return platform_; }
  [[nodiscard]] std::string shownPath(const std::string& path) const override;
  [[nodiscard]] const Volume& volume() const { return volume_; }

 private:
  PosixUser user_;
  SystemLog log_;
  Volume volume_;
  Places places_;
  PosixFileSystem files_;
  MacFolders folders_;
  BundlesOnDisk bundles_;
  PropertyListPreferences preferences_;
  std::string applicationsFolder_;
  LinuxAuthorizations authorizations_;
  std::unique_ptr<UserInterface> interface_;
  SignalInterruptions interruptions_;
  NotificationCenter notifications_;
  PosixTasks tasks_;
  DesktopEntries desktopEntries_;
  FolderQueries metadataQueries_;
  LinuxWorkspace workspace_;
  CpuidProcessor processor_;
  PosixIdentifiers identifiers_;
  PosixClock clock_;
  Platform platform_;
};
