#pragma once

#include <iosfwd>

#include "platform/SystemPlatform.h"

/// Installs into every host that is found, external editors included, without a window, and writes a summary of what
/// went where to `output`.
void runQuietInstall(SystemPlatform& system, std::ostream& output);
