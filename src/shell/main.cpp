#include <iostream>
#include <string_view>
#include <vector>

#include "foundation/Text.h"
#include "platform/SystemPlatform.h"
#include "shell/CommandLine.h"
#include "shell/QuietInstall.h"

namespace {

// The exit statuses of sysexits.h.
constexpr int statusOk = 0;
constexpr int statusUsage = 64;
constexpr int statusNoInput = 66;
constexpr int statusUnavailable = 69;

int complain(std::string_view what, int status) {
  std::cerr << "Installer: " << onOneLine(what) << '\n';
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const CommandLine line = parseCommandLine(arguments);
  if (!line.problem.empty()) return complain(line.problem, statusUsage);

  auto system = makeSystemPlatform(line.target, Surface::console);
  if (!system) return complain(system.error().description(), statusNoInput);

  if (!line.isQuiet) return complain("there is no window yet; -quiet installs without one", statusUnavailable);
  runQuietInstall(**system, std::cout);
  return statusOk;
}
