// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/processes/DescriptorRunLoop.h"

/// The application's event loop of the main thread, run for a while. There is always something that could happen,
/// because the person may do something.
class AppKitRunLoop : public DescriptorRunLoop {
 public:
  [[nodiscard]] Watch watchReadable(int descriptor, std::function<void()> handler) override;
  bool runBeforeDate(Clock::time_point limit) override;
  /// What changed in the windows is painted, too.
  void runUntilDate(Clock::time_point limit) override;
};

/// Ends a wait for events that has begun.
void wakeEventLoop();
