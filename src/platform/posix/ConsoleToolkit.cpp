#include "platform/posix/ConsoleToolkit.h"

#include <iostream>

#include "foundation/Text.h"

AlertAnswer ConsoleToolkit::runAlertPanel(const Alert& alert) {
  std::cerr << onOneLine(alert.title) << ": " << onOneLine(alert.message) << '\n';
  return AlertAnswer::defaultButton;
}
