// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Where the machine's identifier is.
[[nodiscard]] std::string analyticsIdentifierFile(Platform& platform);

/// Gives the machine its identifier for usage statistics, a random UUID in a file, unless there is one. The maker's
/// folder must be there.
void installAnalytics(Platform& platform, PrivilegedTools& tools);
