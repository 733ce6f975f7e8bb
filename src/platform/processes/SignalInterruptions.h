// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Interruptions.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/processes/DescriptorRunLoop.h"

/// SIGINT, SIGTERM and SIGHUP, unless the program was started with the signal ignored. There is one in a process at a
/// time.
class SignalInterruptions : public Interruptions {
 public:
  SignalInterruptions();
  /// Gives the signals back what they did before.
  ~SignalInterruptions() override;

  [[nodiscard]] std::optional<int> requested() const override;
  [[nodiscard]] Observation observe(std::function<void()> handler) override;

  /// Watches for signals in the run loop, which outlives this.
  void setRunLoop(DescriptorRunLoop& runLoop) { runLoop_ = &runLoop; }

  /// As if the signal had come.
  static void note(int signal);

 private:
  DescriptorRunLoop* runLoop_ = nullptr;
  FileDescriptor reading_;
};
