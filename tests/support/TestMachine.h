// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

#include "TestPlatform.h"  // in a folder for each system
#include "support/FaultyFileSystem.h"
#include "support/Recording.h"
#include "support/RecordingAuthorizations.h"
#include "support/RecordingToolkit.h"

namespace fs = std::filesystem;

using Texts = std::map<std::string, std::string>;

/// A folder that goes with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

/// Whether tests/isolated runs the test: accounts, /etc and mounts are the test's own and end with it.
[[nodiscard]] bool isIsolated();

void writeFile(const fs::path& path, std::string_view content);
[[nodiscard]] std::string readFile(const fs::path& path);
/// Gives the item itself to the owner and group, which need not exist.
void setOwner(const fs::path& path, unsigned owner, unsigned group);
/// Permission bits, in octal.
[[nodiscard]] std::string modeOf(const fs::path& path);
/// Names in the folder in ascending order, hidden ones included, joined by blanks.
[[nodiscard]] std::string namesIn(const fs::path& folder);
/// Numbers of four bytes.
[[nodiscard]] std::string bytesOf(std::initializer_list<std::uint32_t> numbers, bool isBigEndian);
/// A property list that is a dictionary of these texts.
[[nodiscard]] std::string propertyListOf(const Texts& texts);
/// A bundle with an info dictionary of these texts.
void makeBundle(const fs::path& path, const Texts& info);

/// Changes a value of the configuration of an installer's bundle, which has one for the key.
void configure(const fs::path& bundle, const std::string& key, const std::string& value);

/// A Mac volume and an installer's bundle in a temporary folder, with the real platform of this system for them.
/// Rights, time, log and alerts are recorded.
class TestMachine {
 public:
  /// Where a path of the volume, or of the bundle's Contents, is for the test itself.
  [[nodiscard]] fs::path onVolume(const std::string& path) const { return volume_.string() + path; }
  [[nodiscard]] fs::path inLibrary(const std::string& path) const { return onVolume(home_ + "/Library/" + path); }
  [[nodiscard]] fs::path inBundle(const std::string& path) const { return bundle_ / "Contents" / path; }
  [[nodiscard]] fs::path payload(const std::string& path) const { return inBundle("Resources/files") / path; }
  [[nodiscard]] const std::string& home() const { return home_; }
  [[nodiscard]] const UserAccount& account() const { return account_; }
  [[nodiscard]] const Volume& volume() const { return system_.volume(); }

  /// A Photoshop that discovery finds: its application, and a Paths file in the user's preferences.
  void addPhotoshop(const std::string& name);

 private:
  TemporaryFolder folder_;
  fs::path volume_ = folder_.path() / "volume";
  fs::path bundle_ = folder_.path() / "Installer.app";
  UserAccount account_ = *loggedInUser();
  std::string home_ = "/Users/" + account_.name;
  [[maybe_unused]] bool isLaidOut_ = layOut();
  TestPlatform system_{volume_, bundle_, account_};
  Platform& real_ = system_.platform();
  PosixUser user_{account_, {"en"}};

  bool layOut();

 public:
  RecordingLog log;
  RecordingClock clock;
  RecordingToolkit toolkit;
  RecordingWorkspace workspace;
  RecordingAuthorizations authorizations{real_.authorizations};
  RecordingInterruptions interruptions;
  FaultyFileSystem files{system_.volume(), user_, [](const std::string&) { return false; }};
  Platform platform{.files = files,
                    .bundles = real_.bundles,
                    .folders = real_.folders,
                    .preferences = real_.preferences,
                    .authorizations = authorizations,
                    .tasks = real_.tasks,
                    .runLoop = real_.runLoop,
                    .notifications = real_.notifications,
                    .launchServices = real_.launchServices,
                    .metadataQueries = real_.metadataQueries,
                    .workspace = workspace,
                    .toolkit = toolkit,
                    .processor = real_.processor,
                    .identifiers = real_.identifiers,
                    .log = log,
                    .user = real_.user,
                    .clock = clock,
                    .interruptions = interruptions};
};

using Paths = std::vector<std::string>;
using Call = FaultyFileSystem::Call;

/// What most tests start with.
class MachineTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path on(const std::string& path) const { return machine_.onVolume(path); }

  TestMachine machine_;
  Platform& platform_ = machine_.platform;
  FaultyFileSystem& files_ = machine_.files;
  RecordingLog& log_ = machine_.log;
};
