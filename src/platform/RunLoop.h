// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

/// The main thread's run loop, in the default mode. Handlers run inside these calls and may make them again.
class RunLoop {
 public:
  using Clock = std::chrono::steady_clock;

  RunLoop() = default;
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;
  virtual ~RunLoop() = default;

  /// A time that is never reached.
  static constexpr Clock::time_point distantFuture = Clock::time_point::max();

  /// Waits for events until the limit and handles them. Returns false when there is nothing to wait for.
  virtual bool runBeforeDate(Clock::time_point limit) = 0;

  /// Handles events until the limit. Handles only pending ones when the limit is now.
  virtual void runUntilDate(Clock::time_point limit) = 0;
};
