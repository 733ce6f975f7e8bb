// SPDX-License-Identifier: Apache-2.0

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "platform/window/WindowModule.h"
#include "platform/window/qt/SampleOwner.h"
#include "support/TestMachine.h"

namespace {

/// Asks the real module for a window, in this process, and writes the outcome to standard error. Returns the exit
/// status.
int makeWindow(const std::map<std::string, std::string>& environment) {
  for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_RUNTIME_DIR"}) {
    ::unsetenv(variable);
  }
  for (const auto& [name, value] : environment) ::setenv(name.c_str(), value.c_str(), 1);
  TestMachine machine;
  void* const module = ::dlopen(WINDOW_MODULE, RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    std::cerr << ::dlerror();
    return 1;
  }
  auto* const make = reinterpret_cast<MakeWindowInterface*>(::dlsym(module, windowModuleEntry));
  std::string problem;
  const std::unique_ptr<UserInterface> made(
      make({machine.platform.files, machine.platform.bundles, machine.platform.user, machine.log}, problem));
  std::cerr << (made != nullptr ? "a window" : problem);
  if (made != nullptr) {
    // What the program throws is caught in the module.
    writeFile(machine.inBundle("Resources/Form.ui"),
              R"(<ui version="4.0"><class>f</class><widget class="QLabel" name="label">
                 <property name="bindText" stdset="0"><string>nobody</string></property></widget></ui>)");
    SampleOwner owner;
    std::cerr << (made->toolkit().loadInterface("Form", owner) ? " with a form" : " without a form");
  }
  for (const std::string& line : machine.log.lines) std::cerr << "; logged " << line;
  return made != nullptr ? 0 : 69;
}

/// Ends the process without what the parent registered for its own exit.
[[noreturn]] void askForAWindow(const std::map<std::string, std::string>& environment) {
  ::_exit(makeWindow(environment));
}

// In a child each: a process gets one window system, and Qt would end it where there is none.
TEST(WindowModuleDeathTest, SaysWhyThereIsNoWindow) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto none = testing::ExitedWithCode(69);
  EXPECT_EXIT(askForAWindow({}), none, "^there is no display$");
  EXPECT_EXIT(askForAWindow({{"DISPLAY", ":987"}}), none, "^the display cannot be reached$");
  EXPECT_EXIT(askForAWindow({{"WAYLAND_DISPLAY", "nowhere"}, {"XDG_RUNTIME_DIR", "/nonexistent"}}), none,
              "^the display cannot be reached$");
  EXPECT_EXIT(askForAWindow({{"QT_QPA_PLATFORM", "xcb"}}), none, "^there is no display$");
  EXPECT_EXIT(askForAWindow({{"QT_QPA_PLATFORM", "invented"}}), none, "^Installer: no window: .*-quiet[^\n]*\n$");
  EXPECT_EXIT(askForAWindow({{"QT_QPA_PLATFORM", "offscreen"}}), testing::ExitedWithCode(0),
              "^a window with a form; logged Interface Form, control \"label\": nobody has the property nobody$");
}

}  // namespace
