// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include "platform/Toolkit.h"

/// Shows the alert as a sheet of the window, or by itself without one, and waits for the answer.
[[nodiscard]] AlertAnswer askAlert(const Alert& alert, NSWindow* window, const Picture& picture);
