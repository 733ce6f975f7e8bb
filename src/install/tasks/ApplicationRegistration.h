// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Has the system's database of applications brought up to date; does not wait for it.
void runLsregister(PrivilegedTools& tools);

/// Makes one installed application known to the system. A failure is in the log.
void registerApplication(Platform& platform, const std::string& path);

/// Removes the download-quarantine mark from the item and all that is in it. The install does not need it: copies that
/// are to be without the mark are made without it.
void releaseFromQuarantine(PrivilegedTools& tools, const std::string& path);
