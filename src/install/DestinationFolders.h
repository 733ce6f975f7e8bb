// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Creates the folder and its parent for the user. Reports no error: callers check whether the folder exists or rights
/// were refused.
void ensureDirExists(Platform& platform, PrivilegedTools& tools, const std::string& path);

/// Sets the attributes on the item and, if it is a folder, on all that is in it. What is not ours to change stays as it
/// is.
void setAttributesRecursive(Platform& platform, const std::string& path, const OwnershipAndMode& attributes);

/// Hands an item that the user has made to the group of what is installed. Returns false when rights were refused.
bool giveToUser(Platform& platform, PrivilegedTools& tools, const std::string& path);
