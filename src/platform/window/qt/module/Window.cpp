// SPDX-License-Identifier: Apache-2.0

#include <string>

#include "platform/window/WindowModule.h"
#include "platform/window/qt/QtUserInterface.h"

extern "C" [[gnu::visibility("default")]] UserInterface* makeWindowInterface(const WindowServices& services,
                                                                             std::string& problem) {
  return QtUserInterface::make(services, problem).release();
}
