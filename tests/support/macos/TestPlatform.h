// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/macos/MacPlatform.h"

/// The platform of this system for tests.
class TestPlatform : public MacPlatform {
 public:
  TestPlatform(const std::string& volume, const std::string& bundle, const UserAccount& account)
      : MacPlatform(Volume(volume, bundle), bundle, account, {"en"},
                    [](const WindowServices&) { return std::make_unique<ConsoleInterface>(); }) {}

  /// There are none.
  static void addHelpers(const std::filesystem::path& /*folder*/) {}
};
