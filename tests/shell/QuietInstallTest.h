// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/stat.h>

#include <sstream>

#include "support/HelperProcess.h"
#include "support/ProgramTest.h"

/// Runs the program that was built, from a copy of its bundle.
class QuietInstallTest : public ProgramTest {
 protected:
  QuietInstallTest() { copyInstaller(bundle_); }

  /// With what a shell is given before and after the command.
  Outcome install(const std::string& before, const std::string& after = "") {
    return run(before + " '" + (bundle_ / "Contents/MacOS/Installer").string() + "' -quiet " + target_ + after);
  }

  const fs::path bundle_ = folder_.path() / "A copy of the Installer.app";
  const fs::path payload_ = bundle_ / "Contents/Resources/files";
  std::string target_ = "-target '" + volume_.string() + "'";
};

/// On a sample volume that is the user nobody's.
class QuietInstallAsRootTest : public QuietInstallTest {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, and to become somebody without rights";
    makeVolume(account_);
    // Lets everybody start the program.
    for (const fs::path& path : {folder_.path(), bundle_}) ::chmod(path.c_str(), 0755);
  }

  Outcome installForNobody(const std::string& after = "") { return install("SUDO_UID=65534 LANG=C", after); }
  [[nodiscard]] std::string installed(const std::string& path) const { return readFile(volume_.string() + path); }
  /// Everything in the log is the user's, with the modes of its kind, and so many items are reported.
  void expectHandedOver(uid_t user, const Outcome& outcome) const {
    const std::string owner = std::to_string(user) + ":" + std::to_string(*groupNumber("admin"));
    std::size_t lines = 0;
    std::istringstream paths(installed(log_));
    for (std::string path; std::getline(paths, path); ++lines) {
      const fs::path item = volume_.string() + path;
      EXPECT_EQ(ownerOf(item) + " " + modeOf(item), owner + (path.ends_with(".csv") ? " 644" : " 775")) << path;
      if (!fs::is_directory(item)) continue;
      for (const auto& entry : fs::recursive_directory_iterator(item)) EXPECT_EQ(ownerOf(entry.path()), owner) << entry;
    }
    EXPECT_EQ(modeOf(volume_.string() + log_), "644");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(outcome.says("Hosts found: 4\n")) << outcome.output << outcome.errors;
    EXPECT_TRUE(outcome.says("Failures: 0\n")) << outcome.output << outcome.errors;
    EXPECT_TRUE(outcome.says("Items installed: " + std::to_string(lines) + ", in 29 places\n")) << outcome.output;
  }

  const std::string log_ = "/Library/Application Support/Corvane/Dunmore 3 Installer.log";
  const fs::path studio_ = volume_ / "Applications/Corvane Dunmore 3 Studio.app";
  std::string account_ = "nobody";
};
