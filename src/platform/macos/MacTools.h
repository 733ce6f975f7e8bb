// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/files/Volume.h"

/// A tool of the system with its arguments, all paths being those of this system.
struct ToolCommand {
  std::string executable;
  std::vector<std::string> arguments;
};

/// The system's own tools, which are all that may be run with rights: nobody but the system can exchange them. Paths of
/// the target volume among the arguments become paths of this system. Nothing when the tool is none of these, or when
/// it would change the installer's own bundle.
[[nodiscard]] std::optional<ToolCommand> resolveTool(const std::string& path, const std::vector<std::string>& arguments,
                                                     const Volume& volume);
