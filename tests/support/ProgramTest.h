// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "support/TestMachine.h"

/// Copies the installer that was built.
inline void copyInstaller(const fs::path& to) {
  fs::copy(INSTALLER_BUNDLE, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
}

/// Programs that were built, started by a shell in a folder of the test's own.
class ProgramTest : public testing::Test {
 protected:
  struct Outcome {
    int status = -1;  ///< of the exit; -1 for a signal
    std::string output;
    std::string errors;

    [[nodiscard]] bool says(const std::string& text) const { return output.find(text) != std::string::npos; }
  };

  Outcome run(const std::string& command) {
    const std::string folder = folder_.path().string();
    const int status = std::system(("cd '" + folder + "' && (" + command + ") >output 2>errors").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(folder_.path() / "output"),
            readFile(folder_.path() / "errors")};
  }
  /// The status of the command. All that it writes is in output().
  int shell(const std::string& command) {
    last_ = run("(" + command + ") 2>&1");
    return last_.status;
  }
  [[nodiscard]] const std::string& output() const { return last_.output; }
  [[nodiscard]] bool says(const std::string& text) const { return last_.says(text); }

  /// Makes the sample volume, with a home of the account's.
  void makeVolume(const std::string& account) {
    ASSERT_EQ(shell(MAKE_SAMPLE_VOLUME " '" + volume_.string() + "' " + account + " " STAND_IN), 0) << output();
  }

  TemporaryFolder folder_;
  const fs::path volume_ = folder_.path() / "Macintosh HD";

 private:
  Outcome last_;
};
