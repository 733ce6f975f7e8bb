// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"

// Stand-ins for parts of the platform that note what they are asked.

class RecordingLog : public Log {
 public:
  std::vector<std::string> lines;

  void write(std::string_view message) override { lines.emplace_back(message); }
  /// How many lines hold the text.
  [[nodiscard]] std::ptrdiff_t count(std::string_view text) const {
    return std::ranges::count_if(lines, [&](const std::string& line) { return line.find(text) != std::string::npos; });
  }
};

class RecordingClock : public Clock {
 public:
  std::vector<std::chrono::microseconds> sleeps;
  std::function<void()> whileSleeping = [] {};

  void sleepFor(std::chrono::microseconds time) override {
    sleeps.push_back(time);
    whileSleeping();
  }
};

/// A program that is asked to end when a test wants it to be.
class RecordingInterruptions : public Interruptions {
 public:
  std::optional<int> signal;

  [[nodiscard]] std::optional<int> requested() const override { return signal; }
  [[nodiscard]] Observation observe(std::function<void()> /*handler*/) override { return nullptr; }
};

/// Runs what a test says is running.
class RecordingWorkspace : public Workspace {
 public:
  std::vector<std::string> running;
  /// Each launch: path and arguments, joined by "|", or "terminate".
  std::vector<std::string> launches;
  bool canLaunch = true;

  [[nodiscard]] bool isObserved() const { return !terminations_.expired() && !launchHandler_.expired(); }
  /// The application starts; who observes is told.
  void begin(const std::string& name);
  /// The application ends; who observes is told.
  void end(const std::string& name);

  [[nodiscard]] std::vector<std::string> launchedApplications() const override { return running; }
  [[nodiscard]] Observation observeTerminations(TerminationHandler handler) override;
  [[nodiscard]] Observation observeLaunches(LaunchHandler handler) override;
  std::unique_ptr<RunningApplication> launchHidden(const std::string& path,
                                                   const std::vector<std::string>& arguments) override;
  void openUrl(const std::string& /*url*/) override {}
  void openItem(const std::string& /*path*/) override {}
  [[nodiscard]] std::string iconFile(const std::string& /*path*/) const override { return ""; }

 private:
  std::weak_ptr<TerminationHandler> terminations_;
  std::weak_ptr<LaunchHandler> launchHandler_;
};
