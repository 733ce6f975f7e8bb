// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <functional>

#include "platform/processes/DescriptorRunLoop.h"

/// Qt's event loop of the main thread, run for a while. There is always something that could happen, because the person
/// may do something.
class QtRunLoop : public DescriptorRunLoop {
 public:
  [[nodiscard]] Watch watchReadable(int descriptor, std::function<void()> handler) override;
  bool runBeforeDate(Clock::time_point limit) override;
  /// What changed in the window is painted, too.
  void runUntilDate(Clock::time_point limit) override;

 private:
  QObject notifiers_;  ///< owns them
};
