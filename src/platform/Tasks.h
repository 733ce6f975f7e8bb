// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

inline constexpr std::string_view fileHandleDataAvailableNotification = "NSFileHandleDataAvailableNotification";
inline constexpr std::string_view taskDidTerminateNotification = "NSTaskDidTerminateNotification";

/// Reading end of a pipe.
class FileHandle {
 public:
  FileHandle() = default;
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  virtual ~FileHandle() = default;

  /// Posts fileHandleDataAvailableNotification, with this handle as its object, once: from a run of the run loop, when
  /// there is something to read or the other end is closed.
  virtual void waitForDataInBackgroundAndNotify() = 0;

  /// What can be read now; waits when there is nothing yet, empty at the end.
  virtual std::string availableData() = 0;
};

/// A child process with a pipe as its standard output and another as its standard error.
class Task {
 public:
  Task() = default;
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;
  virtual ~Task() = default;

  [[nodiscard]] virtual FileHandle& standardOutput() = 0;
  [[nodiscard]] virtual FileHandle& standardError() = 0;

  /// Starts the process; throws Exception when it cannot be started. Its end is posted as taskDidTerminateNotification,
  /// with this task as its object, from a run of the run loop.
  virtual void launch() = 0;
};

class Tasks {
 public:
  Tasks() = default;
  Tasks(const Tasks&) = delete;
  Tasks& operator=(const Tasks&) = delete;
  virtual ~Tasks() = default;

  /// A task for the tool at the absolute path; no search path, no shell.
  [[nodiscard]] virtual std::unique_ptr<Task> makeTask(const std::string& path,
                                                       const std::vector<std::string>& arguments) = 0;
};
