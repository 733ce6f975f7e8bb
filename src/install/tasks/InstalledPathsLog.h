// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Writes the paths, one a line, to the log of installed paths; leaves an earlier log alone when there are none. The
/// log is replaced in one step. Returns whether it was written.
bool logInstalledPaths(Platform& platform, PrivilegedTools& tools, const std::vector<std::string>& paths);
