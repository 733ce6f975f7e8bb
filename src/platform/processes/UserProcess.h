// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"
#include "platform/posix/PosixUser.h"

/// Starts the program with the rights of the user and no others, a clean environment, and no input or output. Does not
/// wait for it. May be called while other threads run.
Status startAsUser(const UserAccount& user, const std::string& program, const std::vector<std::string>& arguments);
