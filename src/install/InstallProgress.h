// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

#include "platform/FileSystem.h"
#include "platform/Transaction.h"

/// How much of an install is done, from 0 to 1, by what of the plan is copied and how far the install has come. A file
/// counts for some bytes more than it has: creating it takes its time, however small it is. How far a medium is with
/// what it writes cannot be known: a phase that waits for it comes closer and closer to its end, about as fast as the
/// copying went.
struct InstallProgress {
  enum class Phase { staging, flushing, cleaningUp, done };
  using Time = std::chrono::steady_clock::time_point;
  TreeSize planned = {};
  CopiedAmount copied = {};
  Time begun = {};  ///< when the phase began
  Phase phase = Phase::staging;
  std::chrono::duration<double> staging = {};  ///< how long it took

  void enter(Phase next, Time now);
  [[nodiscard]] double fraction(Time now) const;
};
