#pragma once

#include <string>

/// Why no window can be had, in words that end a sentence; empty when there is a display. To be asked before there is a
/// QApplication, which ends the process where there is none.
[[nodiscard]] std::string problemWithDisplay();
