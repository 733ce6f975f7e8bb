// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <string>

#include "platform/files/Volume.h"

/// Whether more rights than those of this thread reach an item, see Elevation::covers().
using Covers = std::function<bool(const std::string& resolved)>;

/// A folder on the volume that items are to go to, or the nearest one above it that exists.
struct TargetFolder {
  Volume::Place place;    ///< of the folder that exists
  FileDescriptor handle;  ///< the folder that exists, to start from
  bool isMissing = false;
};

/// Finds the folder. Fails when items could not be put there: a file or a link that leads nowhere is in the way, or
/// neither this thread nor the other rights may write there.
Result<TargetFolder> findTargetFolder(const Volume& volume, const std::string& path, const Covers& covers);
