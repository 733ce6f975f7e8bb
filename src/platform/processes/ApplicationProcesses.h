// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A process whose program lies in the Contents/MacOS folder of an application bundle.
struct ApplicationProcess {
  pid_t id = 0;
  std::uint64_t startTime = 0;  ///< in the system's ticks; with the id it stands for one process and no later one
  std::string bundlePath = {};  ///< on this system; the bundle need not be there any more
};

/// All of them, whoever started them, in the order in which they were started. Of other users' processes only the
/// command line can be read: those are found that were started by their absolute path. A script counts as well.
[[nodiscard]] std::vector<ApplicationProcess> applicationProcesses();

/// When the process was started, as ApplicationProcess has it; nothing when there is no such process.
[[nodiscard]] std::optional<std::uint64_t> startTimeOfProcess(pid_t id);

/// The application bundle that holds the program, the innermost of several; nothing when none does.
[[nodiscard]] std::optional<std::string> bundleOfProgram(std::string_view program);
