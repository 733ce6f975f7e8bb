// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>
#include <vector>

#include "platform/Platform.h"
#include "tool/ToolTexts.h"

/// How what is installed compares with what this installer brings.
struct VerifyReport {
  std::vector<ItemDifference> differences = {};
  std::size_t places = 0;          ///< that were compared
  std::size_t logged = 0;          ///< paths in the log
  std::vector<Error> errors = {};  ///< parts of the payload that could not be read
};

/// Compares everything that an install without a window puts in place, and everything that the log of installed paths
/// lists; with `isOnlyLogged`, the latter alone.
[[nodiscard]] VerifyReport verifyInstall(Platform& platform, bool isOnlyLogged);

void writeVerify(const VerifyReport& report, const std::string& volume, const ToolTexts& texts, std::ostream& output);
