// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "tool/ToolTexts.h"

/// The description of the product for Munki: a property list with scripts that tell whether an install is needed,
/// install, and remove, by means of the installer's own programs. `folder` is where Munki puts the installer on the
/// managed Mac.
[[nodiscard]] std::string munkiItem(const ToolTexts& texts, const std::string& folder);
