// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/Authorization.h"
#include "platform/SystemPlatform.h"
#include "platform/rights/HelperConnection.h"

/// What the helper is started with.
struct HelperSetup {
  std::string helpersFolder;  ///< of the installer's bundle
  std::string volumeRoot;     ///< real and without links
  Surface surface = Surface::console;
  std::function<void()> whileAsking = {};        ///< called now and then while the user is asked; may be empty
  std::function<void(int)> wasInterrupted = {};  ///< called with the signal that asks the helper to end; may be empty
};

/// How this process could ask for a password.
struct AskingMeans {
  std::string sudo;    ///< path; empty when it is not installed
  std::string pkexec;  ///< the same
  bool hasAskpassProgram = false;
  bool hasTerminal = false;  ///< one that the user types into now
  bool hasDesktop = false;
};

/// Those of this process.
[[nodiscard]] AskingMeans askingMeans();

/// Returns the command that runs the helper with rights. It asks for the password where the user can see it, and not at
/// all where nobody can. Empty when rights are not available.
[[nodiscard]] std::vector<std::string> askingCommand(const AskingMeans& means, Surface surface);

/// Asks the user for a password if the system wants one, starts the helper with administrator rights, and waits until
/// it is ready. The status tells why there is none: cancelled, or refused for any other reason.
[[nodiscard]] std::variant<HelperConnection, LaunchStatus> startHelper(const HelperSetup& setup,
                                                                       const AskingMeans& means);

/// Whether only root and the user of this process can replace the program.
[[nodiscard]] bool isOutOfReachOfOthers(const std::string& program);
