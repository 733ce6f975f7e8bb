// SPDX-License-Identifier: Apache-2.0

#include "shell/CommandLine.h"

CommandLine parseCommandLine(std::span<const std::string_view> arguments) {
  CommandLine line;
  if (!arguments.empty() && arguments.front() == "-quiet") {
    line.isQuiet = true;
    arguments = arguments.subspan(1);
  }
  while (!arguments.empty()) {
    const std::string_view argument = arguments.front();
    arguments = arguments.subspan(1);
    if (argument == "-target") {
      if (arguments.empty()) {
        line.problem = "-target needs the folder to install into";
        return line;
      }
      line.target = arguments.front();
      arguments = arguments.subspan(1);
    } else if (line.isQuiet) {
      line.problem = "unknown argument \"" + std::string(argument) + "\"";
      return line;
    }
  }
  return line;
}
