// SPDX-License-Identifier: Apache-2.0

#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>

#include "platform/processes/Ticks.h"

FileDescriptor tickDescriptor(std::chrono::milliseconds interval) {
  FileDescriptor timer(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
  const timespec time{.tv_sec = interval.count() / 1000, .tv_nsec = interval.count() % 1000 * 1'000'000};
  const itimerspec ticks{.it_interval = time, .it_value = time};
  if (timer && ::timerfd_settime(timer.get(), 0, &ticks, nullptr) != 0) return FileDescriptor();
  return timer;
}

void takeTick(int descriptor) {
  std::uint64_t ticks = 0;
  [[maybe_unused]] const auto length = ::read(descriptor, &ticks, sizeof ticks);  // fails when it was taken already
}
