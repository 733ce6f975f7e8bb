// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Clock.h"

class PosixClock : public Clock {
 public:
  void sleepFor(std::chrono::microseconds time) override;
};
