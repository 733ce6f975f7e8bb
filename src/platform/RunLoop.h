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

  /// The moment that never comes.
  static constexpr Clock::time_point distantFuture = Clock::time_point::max();

  /// Waits for the first events until the limit, and handles them. False when it could not run because there is nothing
  /// that could happen.
  virtual bool runBeforeDate(Clock::time_point limit) = 0;

  /// Handles what happens until the limit; with the present moment, what has happened.
  virtual void runUntilDate(Clock::time_point limit) = 0;
};
