// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/LaunchServices.h"
#include "platform/files/Volume.h"

/// The database of applications as desktop entries, one file an application, in a folder of the user's on the volume.
/// An entry starts the application from where the volume is now.
class DesktopEntries : public LaunchServices {
 public:
  DesktopEntries(const Volume& volume, FileSystem& files, const Bundles& bundles, std::string applicationsFolder);

  std::int32_t registerApplication(const std::string& path, bool update) override;
  void forgetApplication(const std::string& path, const std::string& identifier) override;

 private:
  const Volume& volume_;
  FileSystem& files_;
  const Bundles& bundles_;
  std::string applicationsFolder_;
};

/// Where in a home folder the entries are.
[[nodiscard]] std::string applicationsFolderIn(const std::string& home);

/// The text of a desktop entry; nothing when the format cannot express the executable's path.
[[nodiscard]] std::optional<std::string> desktopEntry(const std::string& name, const std::string& executable);
