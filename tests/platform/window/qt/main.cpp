// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
  // A screen in memory, and the same look everywhere.
  for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY", "GTK_THEME", "QT_STYLE_OVERRIDE"}) {
    ::unsetenv(variable);
  }
  ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
