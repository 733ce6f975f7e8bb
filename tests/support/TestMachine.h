#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/linux/LinuxPlatform.h"
#include "support/Recording.h"

namespace fs = std::filesystem;

/// A folder that goes with the object.
class TemporaryFolder {
 public:
  TemporaryFolder();
  explicit TemporaryFolder(const fs::path& parent);
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

void writeFile(const fs::path& path, std::string_view content);
[[nodiscard]] std::string readFile(const fs::path& path);
/// Permission bits, in octal.
[[nodiscard]] std::string modeOf(const fs::path& path);
/// Names in the folder in ascending order, hidden ones included, joined by blanks.
[[nodiscard]] std::string namesIn(const fs::path& folder);
/// A bundle with an info dictionary of these texts, and a file in it.
void makeBundle(const fs::path& path, const std::map<std::string, std::string>& info);

/// A Mac volume and an installer's bundle in a temporary folder, with the real platform of this system for
/// them. Rights, time, log and alerts are recorded.
class TestMachine {
 public:
  TestMachine();

  /// Where a path of the volume, or of the bundle's Contents, is for the test itself.
  [[nodiscard]] fs::path onVolume(const std::string& path) const { return volume_.string() + path; }
  [[nodiscard]] fs::path inBundle(const std::string& path) const { return bundle_ / "Contents" / path; }
  [[nodiscard]] fs::path payload(const std::string& path) const { return inBundle("Resources/files") / path; }
  [[nodiscard]] fs::path folder() const { return folder_.path(); }
  [[nodiscard]] const std::string& home() const { return home_; }
  [[nodiscard]] const UserAccount& account() const { return account_; }

  /// A Photoshop that discovery finds: its application, and a Paths file in the user's preferences.
  void addPhotoshop(const std::string& name);
  void addLightroom();

 private:
  TemporaryFolder folder_;
  fs::path volume_ = folder_.path() / "volume";
  fs::path bundle_ = folder_.path() / "Installer.app";
  UserAccount account_ = loggedInUser();
  std::string home_ = "/Users/" + account_.name;
  bool isLaidOut_ = layOut();
  LinuxPlatform system_;
  Volume faultyVolume_{volume_, bundle_};
  PosixUser user_{account_, {"en"}};

  bool layOut();

 public:
  RecordingLog log;
  RecordingClock clock;
  RecordingToolkit toolkit;
  RecordingAuthorizations authorizations{system_.platform().authorizations};
  FaultyFileSystem files{faultyVolume_, user_};
  Platform platform;
};
