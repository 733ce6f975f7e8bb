// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

/// Language codes in the order of the person's preference, each followed by its more general forms ("zh-Hans-CN" by
/// "zh-Hans" and "zh"); English is the last resort.
[[nodiscard]] std::vector<std::string> preferredLanguagesOfSystem();
