// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"

/// Prepares this process: no standard descriptor is closed, no signal ends it for a lost reader or a file that is too
/// large, and what it creates is readable by everybody.
void setUpProcess();

/// The path without links; nothing when it leads nowhere.
[[nodiscard]] std::optional<std::string> realPath(const std::string& path);

/// The bundle that holds the program in Contents/MacOS, as a path without links; nothing when none does.
[[nodiscard]] std::optional<std::string> bundleOfOwnProgram(const std::string& program);

/// Has the program take the place of this one. Returns only when that is not possible, with the reason.
[[nodiscard]] Error becomeProgram(const std::string& path, const std::vector<std::string>& arguments);
