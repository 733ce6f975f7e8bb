// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>
#include <optional>

/// Tells how long the rest of some work takes, from how fast it went lately. It says nothing before it can know.
class InstallPace {
 public:
  using Time = std::chrono::steady_clock::time_point;

  void begin(Time now);
  /// So much of the work is done, from 0 to 1.
  void note(double fraction, Time now);

  /// Nothing for the first seconds, and while nothing is done.
  [[nodiscard]] std::optional<std::chrono::seconds> remaining() const;

 private:
  Time begun_ = {};
  Time noted_ = {};
  double fraction_ = 0;
  double rate_ = 0;  ///< of the work in a second, of late
};
