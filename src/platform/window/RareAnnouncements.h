// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

/// Tells a screen reader of what goes on changing, such as progress, now and then only: it would read nothing else.
class RareAnnouncements {
 public:
  using Time = std::chrono::steady_clock::time_point;
  static constexpr std::chrono::seconds interval{5};

  /// Whether the change is told; if so, the next ones are not for the length of the interval.
  [[nodiscard]] bool tells(Time now) {
    if (now - last_ < interval) return false;
    last_ = now;
    return true;
  }

 private:
  Time last_ = Time() - interval;
};
