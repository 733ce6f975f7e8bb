// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

#include "foundation/Result.h"
#include "platform/Platform.h"

/// Makes a folder on the volume with what a maker of an installer starts from: "Installer.app", a copy of the main
/// bundle with template names, tables with a comment for each key, grey pictures for the product's, and no payload; and
/// a text that says what to do.
/// Fails, and changes nothing, when there is something of that name. A later failure leaves the folder incomplete.
[[nodiscard]] Status makeNewBundle(Platform& platform, const std::string& folder);
