// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/Pipe.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/files/SystemCalls.h"

Result<Pipe> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) return systemError(errno, "pipe");
  Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
  for (const int end : ends) {
    if (::fcntl(end, F_SETFD, FD_CLOEXEC) != 0) return systemError(errno, "pipe");
  }
  return pipe;
}
