// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include "platform/posix/FileDescriptor.h"

/// A descriptor that becomes readable when the child process has ended.
[[nodiscard]] FileDescriptor processEndDescriptor(pid_t child);
