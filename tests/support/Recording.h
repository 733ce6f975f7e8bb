#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Exception.h"
#include "platform/Platform.h"
#include "platform/posix/PosixFileSystem.h"

// Stand-ins that note what they are asked, do it for real where they can, and fail where a test wants them to.

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
  std::function<void()> beforeLaunch = [] {};

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override {
    return std::make_unique<Recording>(*this);
  }
  [[nodiscard]] std::vector<std::string> launchesOf(const std::string& tool) const {
    std::vector<std::string> found = launches;
    std::erase_if(found, [&](const std::string& launch) { return !launch.starts_with(tool + "|"); });
    return found;
  }

 private:
  struct Recording : Authorization {
    explicit Recording(RecordingAuthorizations& o) : owner(o), real(o.real_.createAuthorization()) {}

    bool obtain(std::uint32_t flags) override { return owner.canBeObtained && flags == extendRights; }
    LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                       std::unique_ptr<CommunicationsPipe>& pipe) override {
      owner.beforeLaunch();
      std::string& launch = owner.launches.emplace_back(toolPath);
      for (const std::string& argument : arguments) launch += "|" + argument;
      const auto status = owner.statusOfTool.find(toolPath);
      if (status != owner.statusOfTool.end()) return status->second;
      return real->executeWithPrivileges(toolPath, arguments, pipe);
    }
    void waitForAnyChild() override { real->waitForAnyChild(); }

    RecordingAuthorizations& owner;
    std::unique_ptr<Authorization> real;
  };

  Authorizations& real_;
};

/// The real file system, whose next calls of one kind can be made to fail.
class FaultyFileSystem : public PosixFileSystem {
 public:
  using PosixFileSystem::PosixFileSystem;

  enum class Call { copyItem, replaceItem, createDirectory, writeData };
  /// The next calls fail with the error, so many of them.
  void fail(Call call, std::errc error, int times = 1) { faults_[call] = {error, times}; }

  Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) override {
    class BrokenFile : public WritableFile {
      void writeData(std::string_view /*data*/) override { throw Exception("no room"); }
    };
    if (fault(Call::writeData, path)) return PosixFileSystem::openForWriting(path);
    return std::unique_ptr<WritableFile>(std::make_unique<BrokenFile>());
  }
  Status createDirectory(const std::string& path, std::uint32_t permissions) override {
    const Status status = fault(Call::createDirectory, path);
    return status ? PosixFileSystem::createDirectory(path, permissions) : status;
  }
  Status copyItem(const std::string& source, const std::string& target) override {
    const Status status = fault(Call::copyItem, target);
    return status ? PosixFileSystem::copyItem(source, target) : status;
  }
  Status replaceItem(const std::string& source, const std::string& target) override {
    const Status status = fault(Call::replaceItem, target);
    return status ? PosixFileSystem::replaceItem(source, target) : status;
  }

 private:
  Status fault(Call call, const std::string& path) {
    auto& [error, times] = faults_[call];
    if (times == 0) return {};
    --times;
    return Error::posix(error, path);
  }

  std::map<Call, std::pair<std::errc, int>> faults_;
};
