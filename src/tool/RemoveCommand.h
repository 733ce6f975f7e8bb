// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/SystemPlatform.h"
#include "tool/Tool.h"
#include "tool/ToolRequest.h"
#include "tool/ToolTexts.h"

/// Shows what goes and what stays, asks for confirmation, and removes.
[[nodiscard]] ToolStatus removeInstalled(const ToolRequest& request, Platform& platform, const std::string& volume,
                                         const ToolStreams& streams);
