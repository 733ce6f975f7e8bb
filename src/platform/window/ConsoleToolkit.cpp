// SPDX-License-Identifier: Apache-2.0

#include "platform/window/ConsoleToolkit.h"

#include <iostream>

#include "foundation/Text.h"

AlertAnswer ConsoleToolkit::runAlertPanel(const Alert& alert) {
  std::cerr << onOneLine(alert.title) << ": " << onOneLine(alert.message) << '\n';
  return AlertAnswer::defaultButton;
}

Result<std::unique_ptr<Interface>> ConsoleToolkit::loadInterface(const std::string& name, InterfaceOwner& /*owner*/) {
  return Error::posix(std::errc::function_not_supported, name);
}
