// SPDX-License-Identifier: Apache-2.0

#include "support/Recording.h"

void RecordingWorkspace::begin(const std::string& name) {
  running.push_back(name);
  if (const auto handler = launchHandler_.lock()) (*handler)(name);
}

void RecordingWorkspace::end(const std::string& name) {
  std::erase(running, name);
  if (const auto handler = terminations_.lock()) (*handler)(name);
}

Workspace::Observation RecordingWorkspace::observeTerminations(TerminationHandler handler) {
  auto held = std::make_shared<TerminationHandler>(std::move(handler));
  terminations_ = held;
  return held;
}

Workspace::Observation RecordingWorkspace::observeLaunches(LaunchHandler handler) {
  auto held = std::make_shared<LaunchHandler>(std::move(handler));
  launchHandler_ = held;
  return held;
}

std::unique_ptr<RunningApplication> RecordingWorkspace::launchHidden(const std::string& path,
                                                                     const std::vector<std::string>& arguments) {
  struct Launched : RunningApplication {
    explicit Launched(std::vector<std::string>& noted) : launches(noted) {}
    void terminate() override { launches.emplace_back("terminate"); }
    std::vector<std::string>& launches;
  };
  std::string& launch = launches.emplace_back(path);
  for (const std::string& argument : arguments) launch += "|" + argument;
  return canLaunch ? std::make_unique<Launched>(launches) : nullptr;
}
