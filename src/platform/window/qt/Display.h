// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

/// What came of looking for a display, before there is a QApplication, which ends the process where there is none.
struct FoundDisplay {
  std::string problem;  ///< why no window can be had; empty when there is a display
  /// To be kept until Qt has connected: some X servers start anew when their only client leaves.
  std::shared_ptr<void> connection;
};
[[nodiscard]] FoundDisplay findDisplay();
