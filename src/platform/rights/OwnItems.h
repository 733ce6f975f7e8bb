// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <string>

#include "foundation/Result.h"

// Changes to an item and all that is in it. Only what belongs to one user is changed: an item of anybody else is left
// alone, with what is in it, and is no failure. No link is followed, and every item is changed through the descriptor
// that its owner was read from, so that nothing can take its place in between. The rest goes on when one item fails,
// and the first failure is returned.

/// Gives the user's items to the user and the group.
[[nodiscard]] Status handOverOwnItems(int folder, const std::string& name, uid_t user, gid_t group);

/// Sets the permissions of the user's files and folders.
[[nodiscard]] Status setModeOfOwnItems(int folder, const std::string& name, uid_t user, mode_t mode);

/// Takes the download-quarantine mark off the user's files and folders. For a process that has the user's rights and no
/// others.
[[nodiscard]] Status removeQuarantineMarkFromOwnItems(int folder, const std::string& name, uid_t user);
