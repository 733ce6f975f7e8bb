// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// An application launched through the workspace. Destroying this object does not end it.
class RunningApplication {
 public:
  RunningApplication() = default;
  RunningApplication(const RunningApplication&) = delete;
  RunningApplication& operator=(const RunningApplication&) = delete;
  virtual ~RunningApplication() = default;

  /// Asks the application to end and does not wait. Does nothing when it has ended.
  virtual void terminate() = 0;
};

/// The applications of the machine.
class Workspace {
 public:
  using TerminationHandler = std::function<void(const std::string& applicationName)>;
  using LaunchHandler = std::function<void(const std::string& applicationName)>;
  /// Ends the observation when it is destroyed.
  using Observation = std::shared_ptr<void>;

  Workspace() = default;
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;
  virtual ~Workspace() = default;

  /// Display names of the applications that run now, whoever started them, in the order in which they were started.
  [[nodiscard]] virtual std::vector<std::string> launchedApplications() const = 0;

  /// Has `handler` called from a run of the run loop, once for each application that ends from now on, and for each
  /// that launchedApplications() last named and that has ended since. launchedApplications() leaves the application out
  /// by then.
  [[nodiscard]] virtual Observation observeTerminations(TerminationHandler handler) = 0;

  /// Has `handler` called from a run of the run loop, once for each application that has started since this call,
  /// within about a second. One that ends sooner may be left out.
  [[nodiscard]] virtual Observation observeLaunches(LaunchHandler handler) = 0;

  /// Starts the application bundle at the path of the target volume as a new, hidden instance; null when it cannot be
  /// started.
  virtual std::unique_ptr<RunningApplication> launchHidden(const std::string& path,
                                                           const std::vector<std::string>& arguments) = 0;

  /// Opens the address in the user's browser. Ignores failures.
  virtual void openUrl(const std::string& url) = 0;

  /// Shows the file or folder at the path of the target volume in the application that the person has for it. Failing
  /// to is not reported.
  virtual void openItem(const std::string& path) = 0;

  /// Path of the picture that the system shows for the file or bundle at the path; empty when it has none of its own.
  [[nodiscard]] virtual std::string iconFile(const std::string& path) const = 0;
};
