// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/Log.h"
#include "platform/User.h"
#include "platform/window/UserInterface.h"

/// What the window needs of the rest of the platform, which outlives it.
struct WindowServices {
  FileSystem& files;
  const Bundles& bundles;
  const User& user;
  Log& log;
};

/// The window is a module of its own, which is loaded when a window is wanted: an install without one needs neither the
/// toolkit's libraries nor the time to load them. This is the name of the module's one entry, and its type. It yields
/// null, and says why, when no window can be had, because there is no display, say.
inline constexpr const char* windowModuleEntry = "makeWindowInterface";
using MakeWindowInterface = UserInterface*(const WindowServices& services, std::string& problem);
