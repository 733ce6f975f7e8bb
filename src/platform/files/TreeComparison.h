// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "platform/FileSystem.h"
#include "platform/files/Volume.h"

/// Compares two items and what is below them, on open folders and following no link. `path` is what the paths of
/// differences begin with. Fails when the source cannot be read.
Status compareTrees(const Volume::Place& source, const Volume::Place& target, const std::string& path,
                    const ItemOwner& owner, const ItemComparison& comparison);
