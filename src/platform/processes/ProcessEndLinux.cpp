// SPDX-License-Identifier: Apache-2.0

#include <sys/syscall.h>
#include <unistd.h>

#include "platform/processes/ProcessEnd.h"

FileDescriptor processEndDescriptor(pid_t child) {
  return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
}
