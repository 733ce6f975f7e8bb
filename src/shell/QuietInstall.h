// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>
#include <optional>

#include "platform/SystemPlatform.h"

struct QuietOutcome {
  std::optional<int> signal = std::nullopt;  ///< that asked the program to end
  bool isSummaryWritten = true;
};

/// Installs into every host that is found, external editors included, without a window, and writes a summary of what
/// went where to `output`.
QuietOutcome runQuietInstall(SystemPlatform& system, std::ostream& output);
