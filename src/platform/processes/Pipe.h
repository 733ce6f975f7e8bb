// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "foundation/Result.h"
#include "platform/posix/FileDescriptor.h"

/// Both ends of a pipe; neither passes to a child process by itself.
struct Pipe {
  FileDescriptor reading;
  FileDescriptor writing;
};

Result<Pipe> makePipe();
