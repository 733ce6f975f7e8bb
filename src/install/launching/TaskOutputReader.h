// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>

#include "platform/Platform.h"

/// Runs one task and collects what it writes, while the run loop goes on.
class TaskOutputReader {
 public:
  /// Sets up the collection; the task must not have been started.
  [[nodiscard]] static std::unique_ptr<TaskOutputReader> initWithTask(Platform& platform, std::unique_ptr<Task> task);

  TaskOutputReader(const TaskOutputReader&) = delete;
  TaskOutputReader& operator=(const TaskOutputReader&) = delete;

  /// Starts the task and returns when its end was announced, or when the run loop cannot run. What the task wrote and
  /// was not read by then is not collected. Throws Exception when the task cannot be started.
  void launchTaskAndRunSynchronous();

  [[nodiscard]] const std::string& standardOutputData() const { return standardOutput_; }
  [[nodiscard]] const std::string& standardErrorData() const { return standardError_; }

 private:
  TaskOutputReader(Platform& platform, std::unique_ptr<Task> task);

  void standardOutNotification();
  void standardErrorNotification();
  void terminatedNotification();

  RunLoop& runLoop_;
  std::unique_ptr<Task> task_;
  std::string standardOutput_;
  std::string standardError_;
  bool taskComplete_ = false;
  NotificationCenter::Observation outputObservation_;
  NotificationCenter::Observation errorObservation_;
  NotificationCenter::Observation terminationObservation_;
};
