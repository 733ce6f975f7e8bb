// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string_view>

#include "foundation/StringsTable.h"

// The tables that this program comes with: they have every key that it looks up, and each text shows every argument
// that it is given.

[[nodiscard]] const StringsTable& referenceTexts();
[[nodiscard]] const StringsTable& referenceSettings();

// The same as they are written, with their comments.
[[nodiscard]] std::string_view referenceTextsFile();
[[nodiscard]] std::string_view referenceSettingsFile();
