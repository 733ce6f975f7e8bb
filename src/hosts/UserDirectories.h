// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "platform/Platform.h"

/// The user's preferences folder, when there is one.
[[nodiscard]] std::optional<std::string> NSUserPreferencesDirectory(const Platform& platform);

/// The user's Application Support folder, when there is one.
[[nodiscard]] std::optional<std::string> ApplicationSupportDirectory(const Platform& platform);
