#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/posix/PosixFileSystem.h"

// Stand-ins that note what they are asked, do it for real where they can, and fail where a test wants them
// to.

class RecordingLog : public Log {
 public:
  std::vector<std::string> lines;

  void write(std::string_view message) override { lines.emplace_back(message); }
  /// How many lines are exactly this.
  [[nodiscard]] std::ptrdiff_t count(std::string_view line) const;
  [[nodiscard]] bool contains(std::string_view part) const;
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

class RecordingToolkit : public Toolkit {
 public:
  std::vector<Alert> alerts;
  AlertAnswer answer = AlertAnswer::defaultButton;

  AlertAnswer runAlertPanel(const Alert& alert) override {
    alerts.push_back(alert);
    return answer;
  }
};

/// Rights that are there unless a test takes them away. Tools run for real.
class RecordingAuthorizations : public Authorizations {
 public:
  explicit RecordingAuthorizations(Authorizations& real) : real_(real) {}

  std::vector<std::string> launches;  ///< tool and arguments, joined by "|"
  bool canBeObtained = true;
  std::map<std::string, LaunchStatus> statusOfTool = {};  ///< tools that are not run
  std::function<void(const std::string& launch)> beforeLaunch = [](const std::string&) {};
  int obtained = 0;

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override;
  [[nodiscard]] std::vector<std::string> launchesOf(const std::string& tool) const;

 private:
  class Recording;
  Authorizations& real_;
};

/// The real file system, whose next calls of one kind can be made to fail.
class FaultyFileSystem : public PosixFileSystem {
 public:
  using PosixFileSystem::PosixFileSystem;

  enum class Call { copyItem, replaceItem, createDirectory, createFile, openForWriting, writeData, readFile };
  /// The next calls fail with the error, so many of them.
  void fail(Call call, std::errc error, int times = 1) { faults_[call] = {error, times}; }
  /// For so many questions whether its name is taken, it is not.
  void hide(const std::string& path, int questions) { hidden_[path] = questions; }

  [[nodiscard]] bool isTaken(const std::string& path) const override;
  Result<std::string> readFile(const std::string& path, std::size_t limit) const override;
  Status createFile(const std::string& path, std::string_view content, std::uint32_t permissions) override;
  Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) override;
  Status createDirectory(const std::string& path, std::uint32_t permissions) override;
  Status copyItem(const std::string& source, const std::string& target) override;
  Status replaceItem(const std::string& source, const std::string& target) override;

 private:
  struct Fault {
    std::errc error;
    int times;
  };
  [[nodiscard]] Status fault(Call call, const std::string& path) const;

  mutable std::map<Call, Fault> faults_;
  mutable std::map<std::string, int> hidden_;
};
