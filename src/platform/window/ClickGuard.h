// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <chrono>

#include "platform/Toolkit.h"

/// Tells clicks that are meant from those that only meet what has just come under the pointer: the second one of a
/// double-click on a button whose page or alert has changed, say.
class ClickGuard {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// The pointer was seen here.
  void pointerAt(Point place);
  /// Something that can be clicked was shown, or a window on top of it went.
  void contentChanged(Time now);
  /// Whether a click counts: the pointer has moved since the change, or was given time to.
  [[nodiscard]] bool accepts(Time now) const;

 private:
  static constexpr std::chrono::milliseconds pause{500};
  static constexpr double tremor = 4;  ///< a hand is never quite still

  Point place_;
  Point placeAtChange_;
  Time changedAt_ = {};
  bool hasMoved_ = true;
};
