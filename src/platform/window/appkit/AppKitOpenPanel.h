// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <optional>
#include <string>

#include "platform/FileSystem.h"
#include "platform/Toolkit.h"

/// Has a folder of the volume with this root chosen, in a sheet of the window where there is one. Paths inside the
/// panel are those of this system; the result is a path of the volume.
[[nodiscard]] std::optional<std::string> askForFolder(const OpenPanel& panel, const std::string& volumeRoot,
                                                      NSWindow* window);
