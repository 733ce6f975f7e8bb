// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "foundation/Result.h"

/// A child process to start. It inherits no other descriptor, no environment except PATH and the C locale, and no
/// signal disposition or mask.
struct ChildProcess {
  std::string executable;
  std::vector<std::string> arguments;  ///< without the program's name
  int standardOutput = -1;             ///< -1: ours
  int standardError = -1;              ///< -1: ours
  int folder = -1;                     ///< the open folder that it is started in; -1: ours
};

/// Starts the process; its standard input is empty. The error tells why it could not be started.
Result<pid_t> spawn(const ChildProcess& child);
