#pragma once

#include "hosts/HostModel.h"
#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Removes earlier copies of the plug-ins that the bundle's shared support names from the host's plug-in folder, at any
/// depth: whatever has exactly one of these names. Runs the run loop. Stops at once when there are no rights to be had,
/// which the tools then tell; any other copy that cannot be removed stays.
void unInstallForHost(Platform& platform, PrivilegedTools& tools, const HostModel& host);
