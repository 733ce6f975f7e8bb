// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/linux/LinuxPlatform.h"

/// The platform of this system for tests, without a window.
class TestPlatform : public LinuxPlatform {
 public:
  TestPlatform(const std::string& volume, const std::string& bundle, const UserAccount& account)
      : LinuxPlatform(Volume(volume, bundle), bundle, account,
                      [](const WindowServices&) { return std::make_unique<ConsoleInterface>(); }) {}

  /// Puts the programs that the installer starts into the bundle.
  static void addHelpers(const std::filesystem::path& folder) {
    std::filesystem::create_symlink(std::filesystem::path(HELPERS_FOLDER) / "launch", folder / "launch");
  }
};
