// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>

#include "platform/SystemPlatform.h"
#include "tool/ToolRequest.h"

struct ToolStreams {
  std::istream& input;
  std::ostream& output;
  std::ostream& errors;
};

/// Carries out the request. Returns the status to end with.
[[nodiscard]] int runTool(const ToolRequest& request, SystemPlatform& system, const ToolStreams& streams);
