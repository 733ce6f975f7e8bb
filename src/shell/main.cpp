#include <iostream>
#include <string_view>
#include <vector>

#include "foundation/Text.h"
#include "platform/SystemPlatform.h"
#include "shell/CommandLine.h"
#include "shell/QuietInstall.h"
#include "shell/Wizard.h"

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

int complainOfWindow(const Error& error) {
  return complain("no window: " + error.description() + "; -quiet installs without one", statusUnavailable);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const CommandLine line = parseCommandLine(arguments);
  if (!line.problem.empty()) return complain(line.problem, statusUsage);

  auto system = makeSystemPlatform(line.target, line.isQuiet ? Surface::console : Surface::window);
  if (!system) {
    const bool isWindowMissing = system.error().domain == noWindowDomain;
    return isWindowMissing ? complainOfWindow(system.error()) : complain(system.error().description(), statusNoInput);
  }

  if (line.isQuiet) {
    runQuietInstall(**system, std::cout);
    return statusOk;
  }
  const Status shown = runWizard((*system)->platform());
  return shown ? statusOk : complainOfWindow(shown.error());
}
