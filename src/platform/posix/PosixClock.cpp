// SPDX-License-Identifier: Apache-2.0

#include "platform/posix/PosixClock.h"

#include <thread>

void PosixClock::sleepFor(std::chrono::microseconds time) { std::this_thread::sleep_for(time); }
