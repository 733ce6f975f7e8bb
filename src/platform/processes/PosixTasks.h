// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "foundation/NotificationCenter.h"
#include "platform/Tasks.h"
#include "platform/processes/DescriptorRunLoop.h"

/// Child processes whose output is read through the run loop.
class PosixTasks : public Tasks {
 public:
  PosixTasks(DescriptorRunLoop& runLoop, NotificationCenter& notifications)
      : runLoop_(runLoop), notifications_(notifications) {}

  [[nodiscard]] std::unique_ptr<Task> makeTask(const std::string& path,
                                               const std::vector<std::string>& arguments) override;

 private:
  DescriptorRunLoop& runLoop_;
  NotificationCenter& notifications_;
};
