// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/files/Elevation.h"

/// Creates an empty folder for the user, with exactly this mode, and opens it for reading: with the own rights, or,
/// where they do not suffice, with the elevation. The mode may have the set-group-id bit. A group that cannot be given
/// is left. Fails with file_exists when the name is taken.
Result<FileDescriptor> makeUserFolder(const Volume::Spot& place, mode_t mode, const Ownership& ownership,
                                      Elevation& elevation);

/// Opens a folder that this process has just created with mode 0700, for reading. Avoids a race: fails with
/// operation_not_permitted when another folder has taken its place that is neither empty and as new nor the user's.
Result<FileDescriptor> openNewFolder(const Volume::Spot& place, uid_t user);

/// What a folder on the volume is to an item that goes there.
enum class FolderRole { holdsItem, isAboveThat, leadsThere };

/// Opens the folder on the volume, and creates what is missing of it for the user: the folder that holds an item and
/// the one above it with mode 0775 and the group of what is installed, those further up with mode 0755 and the group
/// that new folders have there. Fails at a dangling link: its target may be a disk that is not mounted
/// at present.
Result<FileDescriptor> openOrMakeUserFolders(const Volume& volume, const std::string& path, FolderRole role,
                                             const Ownership& ownership, Elevation& elevation);
