// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <list>
#include <memory>

#include "platform/processes/DescriptorRunLoop.h"

/// A run loop on poll(2), for a program without a window.
class PollRunLoop : public DescriptorRunLoop {
 public:
  [[nodiscard]] Watch watchReadable(int descriptor, std::function<void()> handler) override;
  bool runBeforeDate(Clock::time_point limit) override;
  void runUntilDate(Clock::time_point limit) override;

 private:
  struct Source {
    int descriptor;
    std::function<void()> handler;
  };

  std::list<std::weak_ptr<Source>> sources_;
};
