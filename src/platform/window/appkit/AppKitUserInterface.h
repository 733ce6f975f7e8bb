// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "platform/window/WindowModule.h"

/// The window's side of the program, one at a time. `volumeRoot` is the target volume's folder on this system. Null,
/// and the problem, when no window can be had.
[[nodiscard]] std::unique_ptr<UserInterface> makeAppKitInterface(const WindowServices& services,
                                                                 const std::string& volumeRoot, std::string& problem);
