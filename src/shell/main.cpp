// SPDX-License-Identifier: Apache-2.0

#include <exception>
#include <iostream>
#include <string_view>
#include <vector>

#include "foundation/Text.h"
#include "payload/Configuration.h"
#include "payload/Payload.h"
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
constexpr int statusSystem = 71;
constexpr int statusOutput = 74;
/// Of a program that a signal has ended, as shells tell it: this and the number of the signal.
constexpr int statusSignal = 128;

int complain(std::string_view what, int status) {
  std::cerr << "Installer: " << onOneLine(what) << '\n';
  return status;
}

int complainOfWindow(const Error& error) {
  return complain("no window: " + error.description() + "; -quiet installs without one", statusUnavailable);
}

/// Whether the payload waits beside the bundle for being packed.
bool lacksPayload(Platform& platform) {
  const bool isBeside = !Configuration(platform).payloadBeside().empty();
  return isBeside && !platform.files.exists(Payload(platform).folder(""));
}

int run(const std::vector<std::string_view>& arguments) {
  const CommandLine line = parseCommandLine(arguments);
  if (!line.problem.empty()) return complain(line.problem, statusUsage);

  auto system = makeSystemPlatform(line.target, line.isQuiet ? Surface::console : Surface::window);
  if (!system) {
    const bool isWindowMissing = system.error().domain == noWindowDomain;
    return isWindowMissing ? complainOfWindow(system.error()) : complain(system.error().description(), statusNoInput);
  }
  if (lacksPayload((*system)->platform())) {
    return complain(
        "the payload is not in the bundle yet: move its folder to Contents/Resources/files and leave "
        "\"payload\" in installer.strings empty, or have InstallerTool preview or pack put it there",
        statusNoInput);
  }

  if (line.isQuiet) {
    const auto [signal, isSummaryWritten] = runQuietInstall(**system, std::cout);
    if (signal) return statusSignal + *signal;
    return isSummaryWritten ? statusOk : complain("the summary cannot be written", statusOutput);
  }
  const Status shown = runWizard((*system)->platform());
  if (!shown) return complainOfWindow(shown.error());
  const auto signal = (*system)->platform().interruptions.requested();
  return signal ? statusSignal + *signal : statusOk;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run({argv + (argc > 0 ? 1 : 0), argv + argc});
  } catch (const std::exception& exception) {  // no memory, mostly
    return complain(exception.what(), statusSystem);
  }
}
