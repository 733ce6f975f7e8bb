// SPDX-License-Identifier: Apache-2.0

#include "install/launching/TaskOutputReader.h"

#include <utility>

namespace {

void collect(FileHandle& handle, std::string& buffer) {
  const std::string data = handle.availableData();
  buffer += data;
  // At the end of the output there is nothing more to wait for; a handle at its end would report itself for ever.
  if (!data.empty()) handle.waitForDataInBackgroundAndNotify();
}

}  // namespace

std::unique_ptr<TaskOutputReader> TaskOutputReader::initWithTask(Platform& platform, std::unique_ptr<Task> task) {
  return std::unique_ptr<TaskOutputReader>(new TaskOutputReader(platform, std::move(task)));
}

TaskOutputReader::TaskOutputReader(Platform& platform, std::unique_ptr<Task> task)
    : runLoop_(platform.runLoop), task_(std::move(task)) {
  NotificationCenter& center = platform.notifications;
  outputObservation_ = center.addObserver(fileHandleDataAvailableNotification, &task_->standardOutput(),
                                          [this](const Notification&) { standardOutNotification(); });
  errorObservation_ = center.addObserver(fileHandleDataAvailableNotification, &task_->standardError(),
                                         [this](const Notification&) { standardErrorNotification(); });
  terminationObservation_ = center.addObserver(taskDidTerminateNotification, task_.get(),
                                               [this](const Notification&) { terminatedNotification(); });
  task_->standardOutput().waitForDataInBackgroundAndNotify();
  task_->standardError().waitForDataInBackgroundAndNotify();
}

void TaskOutputReader::standardOutNotification() { collect(task_->standardOutput(), standardOutput_); }
void TaskOutputReader::standardErrorNotification() { collect(task_->standardError(), standardError_); }
void TaskOutputReader::terminatedNotification() { taskComplete_ = true; }

void TaskOutputReader::launchTaskAndRunSynchronous() {
  task_->launch();
  while (!taskComplete_ && runLoop_.runBeforeDate(RunLoop::distantFuture)) {
  }
}
