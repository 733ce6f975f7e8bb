// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>

#include "platform/RunLoop.h"

/// A run loop that can watch descriptors.
class DescriptorRunLoop : public RunLoop {
 public:
  /// Lasts as long as this object.
  using Watch = std::shared_ptr<void>;

  /// Calls `handler` from a run of the loop, each time that `descriptor` can be read or its other end is closed.
  [[nodiscard]] virtual Watch watchReadable(int descriptor, std::function<void()> handler) = 0;
};
