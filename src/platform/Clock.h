// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

/// Passing time.
class Clock {
 public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  /// Blocks the calling thread.
  virtual void sleepFor(std::chrono::microseconds time) = 0;
};
