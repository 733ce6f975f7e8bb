// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Workspace.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/processes/DescriptorRunLoop.h"

/// The applications that run, each with a descriptor that tells of its end. The processes are looked at when somebody
/// asks which ones run, when an observation begins, and when an application ends. So an application that starts later
/// is observed from the next of these moments on, and one that starts and ends between two of them is not told of.
/// Whatever namesOfRunning() named is told of when it ends. The system tells an ordinary program of no start, so while
/// somebody observes launches, and only then, the processes are looked at once a second.
class ApplicationWatch : public std::enable_shared_from_this<ApplicationWatch> {
 public:
  using NameOfBundle = std::function<std::string(const std::string& bundlePath)>;

  ApplicationWatch(DescriptorRunLoop& runLoop, NameOfBundle nameOfBundle)
      : runLoop_(runLoop), nameOfBundle_(std::move(nameOfBundle)) {}

  /// In the order in which they were started.
  [[nodiscard]] std::vector<std::string> namesOfRunning();

  /// See Workspace::observeTerminations().
  [[nodiscard]] std::shared_ptr<void> observe(Workspace::TerminationHandler handler);
  /// See Workspace::observeLaunches().
  [[nodiscard]] std::shared_ptr<void> observeLaunches(Workspace::LaunchHandler handler);

 private:
  using Process = std::pair<pid_t, std::uint64_t>;  ///< id and start time
  struct Application {
    std::string name;
    FileDescriptor end;
    DescriptorRunLoop::Watch watch = nullptr;
  };
  struct Observer;
  struct LaunchObserver;

  [[nodiscard]] std::vector<Process> look();
  [[nodiscard]] std::vector<std::shared_ptr<Observer>> observers();
  void watchWhileObserved();
  void ended(Process process);
  void lookForLaunches(LaunchObserver& observer);

  DescriptorRunLoop& runLoop_;
  NameOfBundle nameOfBundle_;
  std::map<Process, Application> applications_;
  std::vector<std::weak_ptr<Observer>> observers_;
};
