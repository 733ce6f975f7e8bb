// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <string>

#include "foundation/Result.h"
#include "platform/files/Volume.h"

/// Success when the open folder is the root of a Mac volume, or laid out like one: it holds the folders Applications
/// and Library, and they belong to root or to the user. The error says what is missing; `shownPath` names the folder in
/// it. Anything else, the root of a running Linux among it, is somebody's folder that an install would fill with its
/// own.
[[nodiscard]] Status checkMacVolume(int folder, uid_t user, const std::string& shownPath);

/// Opens the volume to install into and checks it as above. Fails when the target is not a folder or cannot be opened.
[[nodiscard]] Result<Volume> openMacVolume(const std::string& target, const std::string& bundlePath, uid_t user);
