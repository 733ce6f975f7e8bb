// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/event.h>

#include <cerrno>
#include <utility>

#include "platform/processes/Pipe.h"
#include "platform/processes/ProcessEnd.h"

FileDescriptor processEndDescriptor(pid_t child) {
  FileDescriptor queue(::kqueue());
  if (!queue || ::fcntl(queue.get(), F_SETFD, FD_CLOEXEC) != 0) return {};
  struct kevent change {};
  EV_SET(&change, static_cast<uintptr_t>(child), EVFILT_PROC, EV_ADD | EV_ONESHOT, NOTE_EXIT, 0, nullptr);
  if (::kevent(queue.get(), &change, 1, nullptr, 0, nullptr) == 0) return queue;
  if (errno != ESRCH) return {};
  // A process that has ended cannot be watched any more. The end of a pipe without a writer can be read at once.
  auto pipe = makePipe();
  return pipe ? std::move(pipe->reading) : FileDescriptor();
}
