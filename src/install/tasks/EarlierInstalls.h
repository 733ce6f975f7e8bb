// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>

#include "hosts/HostModel.h"
#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Removes earlier copies of the plug-ins that the bundle's shared support names from the host's plug-in folder, at any
/// depth: whatever has exactly one of these names. Runs the run loop. Stops when rights are not available
/// (PrivilegedTools::isDenied()). Any other copy that cannot be removed stays, and so does one that `isKept` says is
/// to.
void unInstallForHost(Platform& platform, PrivilegedTools& tools, const HostModel& host,
                      const std::function<bool(const std::string& path)>& isKept);
