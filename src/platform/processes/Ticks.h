// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

#include "platform/posix/FileDescriptor.h"

/// A descriptor that can be read after each such time. Invalid, with errno, when there is none to be had.
[[nodiscard]] FileDescriptor tickDescriptor(std::chrono::milliseconds interval);

/// Waits for the next tick again.
void takeTick(int descriptor);
