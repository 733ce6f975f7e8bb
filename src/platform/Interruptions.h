// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <optional>

/// Requests from outside to end the program: signals, and the end of the session.
class Interruptions {
 public:
  using Observation = std::shared_ptr<void>;

  Interruptions() = default;
  Interruptions(const Interruptions&) = delete;
  Interruptions& operator=(const Interruptions&) = delete;
  virtual ~Interruptions() = default;

  /// The number of the first signal that asked the program to end; nothing when none has.
  [[nodiscard]] virtual std::optional<int> requested() const = 0;

  /// Calls `handler` from a run of the run loop when the program is asked to end, for as long as the result lives.
  [[nodiscard]] virtual Observation observe(std::function<void()> handler) = 0;
};
