// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <vector>

#include "kit/Finding.h"
#include "platform/Platform.h"

/// Every mistake that can be told from the main bundle of the platform alone, the most serious ones first.
[[nodiscard]] std::vector<Finding> checkBundle(Platform& platform);
