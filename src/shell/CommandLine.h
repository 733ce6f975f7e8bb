// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <span>
#include <string>
#include <string_view>

/// What the program was asked to do.
struct CommandLine {
  bool isQuiet = false;      ///< install without a window: "-quiet" was the first argument
  std::string target = "/";  ///< the volume to install into: "-target FOLDER"
  std::string problem = {};  ///< what is wrong with the arguments, in one line; empty when nothing is
};

/// Reads the arguments, the program's name not among them. Only a quiet install minds arguments that it does not know:
/// nobody watches it, and a misspelt "-target" would install into the running system. The window starts with any.
[[nodiscard]] CommandLine parseCommandLine(std::span<const std::string_view> arguments);
