#pragma once

#include <string>

#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Makes the folder, and the one that it is in, and hands what it made to the user. Whoever needs the folder sees
/// whether it is there, or that the rights were refused.
void ensureDirExists(Platform& platform, PrivilegedTools& tools, const std::string& path);

/// Sets the attributes on the item and, if it is a folder, on all that is in it. What is not ours to change stays as it
/// is.
void setAttributesRecursive(Platform& platform, const std::string& path, const OwnershipAndMode& attributes);

/// Hands an item that the user has made to the group of what is installed. Returns false when rights were refused.
bool giveToUser(Platform& platform, PrivilegedTools& tools, const std::string& path);
