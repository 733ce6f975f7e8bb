// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Toolkit.h"
#include "platform/processes/DescriptorRunLoop.h"
#include "platform/processes/PollRunLoop.h"
#include "platform/window/ConsoleToolkit.h"

/// How the program meets the person: a toolkit, and the run loop that goes with it.
class UserInterface {
 public:
  UserInterface() = default;
  UserInterface(const UserInterface&) = delete;
  UserInterface& operator=(const UserInterface&) = delete;
  virtual ~UserInterface() = default;

  [[nodiscard]] virtual DescriptorRunLoop& runLoop() = 0;
  [[nodiscard]] virtual Toolkit& toolkit() = 0;
};

/// For a program without a window.
class ConsoleInterface : public UserInterface {
 public:
  [[nodiscard]] DescriptorRunLoop& runLoop() override { return runLoop_; }
  [[nodiscard]] Toolkit& toolkit() override { return toolkit_; }

 private:
  PollRunLoop runLoop_;
  ConsoleToolkit toolkit_;
};
