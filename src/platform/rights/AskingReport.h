// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

/// How the asking for a password ended, when it did before the helper was ready. Goes through a pipe as it is.
struct AskingReport {
  std::int32_t status = 0;       ///< exit status of the program that asked
  std::int32_t isCancelled = 0;  ///< whether the user's own askpass program gave no password
};
