// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "support/TestMachine.h"

/// Who runs the installer.
enum class Who { root, user };

/// The program that was built, on a volume with an old version of a product of twelve bundles, about to upgrade it.
///
/// INSTALLER_TRIALS in the environment is the number of rounds; without it a trial is a short one for every build.
class Trial : public testing::Test {
 protected:
  static constexpr int bundleCount = 12;

  Trial();
  void SetUp() override;

  /// How often the trial is repeated.
  [[nodiscard]] static int rounds(int inShort);

  /// Lays out the volume with the old version anew.
  void reset() const { reset(volume_); }
  void reset(const fs::path& volume) const;

  struct Run {
    int status = -1;  ///< exit status, or minus the signal
    std::string output;
  };
  /// A started installer.
  struct Process {
    pid_t id = 0;  ///< also of its process group
    fs::path output;
  };
  [[nodiscard]] Process start(Who who, const std::vector<std::string>& wrapper = {}) const;
  [[nodiscard]] Process start(Who who, const fs::path& volume, const std::vector<std::string>& wrapper) const;
  /// Starts another program, with its arguments.
  [[nodiscard]] Process startProgram(Who who, std::vector<std::string> words) const;
  /// Waits for its end.
  [[nodiscard]] Run finish(const Process& process) const;
  [[nodiscard]] Run run(Who who, const std::vector<std::string>& wrapper = {}) const {
    return finish(start(who, wrapper));
  }
  /// Waits until no helper works on the volume any more.
  void waitForHelper() const { waitForHelper(volume_); }
  static void waitForHelper(const fs::path& volume);

  /// State of the product on a volume.
  struct State {
    int old = 0;
    int fresh = 0;
    int broken = 0;  ///< bundles that are neither
    int gone = 0;    ///< those of them of which nothing is there

    [[nodiscard]] bool isMixed() const { return old > 0 && fresh > 0; }
  };
  [[nodiscard]] State look() const { return look(volume_); }
  [[nodiscard]] State look(const fs::path& volume) const;
  /// Hidden items of the installer's.
  [[nodiscard]] static int leftovers(const fs::path& volume);
  /// Whether the summary says that everything was installed.
  [[nodiscard]] static bool claimsSuccess(const Run& run);
  /// Milliseconds of a whole run, about.
  [[nodiscard]] double duration(Who who) const;

  /// A fraction from 0 to 1, another one each time.
  double random() { return std::uniform_real_distribution<double>()(engine_); }
  static void sleep(double milliseconds);
  static void say(const std::string& figures);

  TemporaryFolder folder_;
  fs::path bundle_ = folder_.path() / "Installer.app";
  fs::path volume_ = folder_.path() / "volume";
  std::string user_ = "installer-trial";

 private:
  void makePayload(const fs::path& folder, const std::string& version) const;

  fs::path old_ = folder_.path() / "old";
  std::string digestOfOld_[bundleCount];
  std::string digestOfNew_[bundleCount];
  std::mt19937_64 engine_{std::random_device()()};
};

/// Everything about a tree but times: names, kinds, modes, owners, contents, where links lead.
[[nodiscard]] std::string digestOf(const fs::path& path, bool withOwners);
