// SPDX-License-Identifier: Apache-2.0

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>

#include "trials/Trial.h"

namespace {

/// Fails each system call of a run once, by strace, and looks at what the run claims and at what is there.
class SystemCallTrial : public Trial {
 protected:
  /// A product with a little of everything, and a host for it.
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root";
    if (std::system("strace -f -o /dev/null true 2>/dev/null") != 0) GTEST_SKIP() << "strace is not installed";
    const fs::path payload = bundle_ / "Contents/Resources/files";
    fs::remove_all(payload);
    makeBundle(payload / "HD/Applications/Studio.app", {{"CFBundleVersion", "2"}, {"CFBundleExecutable", "Studio"}});
    writeFile(payload / "HD/Applications/Studio.app/Contents/MacOS/Studio", "#!/bin/sh\n");
    fs::permissions(payload / "HD/Applications/Studio.app/Contents/MacOS/Studio", fs::perms(0755));
    writeFile(payload / "HD/Library/Application Support/Corvane/Dunmore 3/Presets/a", "new");
    writeFile(payload / "HD/Library/Application Support/Corvane/Dunmore 3/b", "new");
    makeBundle(payload / "HD/Library/Application Support/Corvane/Known by its layout.filter",
               {{"CFBundleVersion", "2"}});
    makeBundle(payload / "PHOTOSHOP_PLUGINS/Corvane/Filter.plugin", {{"CFBundleVersion", "2"}});
    layOut();
    ASSERT_TRUE(claimsSuccess(run(Who::root)));
    expected_ = digests();
    layOut();
    old_ = digests();
  }

  void layOut() const {
    fs::remove_all(volume_);
    for (const char* const folder : {"Applications", "Library/Application Support", "Users/root/Library/Preferences"}) {
      fs::create_directories(volume_ / folder);
    }
    const std::string photoshop = "/Applications/Adobe Photoshop CS6";
    fs::create_directories(volume_.string() + photoshop + "/Adobe Photoshop CS6.app");
    writeFile(volume_ / "Users/root/Library/Preferences/Adobe Photoshop CS6 Paths",
              photoshop + '\0' + photoshop + "/Plug-Ins" + '\0');
    makeBundle(volume_.string() + photoshop + "/Plug-Ins/Corvane/Filter.plugin", {{"CFBundleVersion", "1"}});
    makeBundle(volume_ / "Applications/Studio.app", {{"CFBundleVersion", "1"}});
    writeFile(volume_ / "Library/Application Support/Corvane/Dunmore 3/b", "old");
  }

  using Digests = std::map<std::string, std::string>;
  /// Of everything that the install makes.
  [[nodiscard]] Digests digests() const {
    Digests digests;
    for (const std::string path :
         {"Applications/Studio.app", "Library/Application Support/Corvane/Known by its layout.filter",
          "Applications/Adobe Photoshop CS6/Plug-Ins/Corvane/Filter.plugin",
          "Library/Application Support/Corvane/Dunmore 3/b", "Library/Application Support/Corvane/Dunmore 3/Presets",
          "Library/Application Support/Corvane/Dunmore 3 Installer.log"}) {
      digests[path] = digestOf(volume_ / path, true);
    }
    return digests;
  }

  /// How often a thread makes each system call in a run.
  [[nodiscard]] std::map<std::string, int> callsOfARun() const {
    layOut();
    const fs::path trace = folder_.path() / "trace";
    static_cast<void>(run(Who::root, {"strace", "-f", "-o", trace}));
    std::map<std::string, std::map<std::string, int>> counts;  // by call and thread
    std::ifstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
      const std::size_t space = line.find_first_not_of(' ', line.find(' '));
      const std::size_t parenthesis = line.find('(');
      if (space == std::string::npos || parenthesis == std::string::npos || parenthesis < space) continue;
      const std::string call = line.substr(space, parenthesis - space);
      if (call.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789_") != std::string::npos) continue;
      ++counts[call][line.substr(0, line.find(' '))];
    }
    std::map<std::string, int> calls;
    for (const auto& [call, threads] : counts) {
      for (const auto& [thread, count] : threads) calls[call] = std::max(calls[call], count);
    }
    // These never fail, or end the process at once. A futex that fails breaks the C library's locks.
    for (const char* const call : {"exit", "exit_group", "execve", "rt_sigreturn", "futex", "getuid", "geteuid",
                                   "getgid", "getegid", "getpid", "gettid", "umask"}) {
      calls.erase(call);
    }
    return calls;
  }

  Digests expected_;
  Digests old_;
};

TEST_F(SystemCallTrial, IsReportedAsAFailureWhenACallFails) {
  const auto calls = callsOfARun();
  const bool isWhole = std::getenv("INSTALLER_TRIALS") != nullptr;
  int runs = 0;
  int claimed = 0;
  int falseSuccesses = 0;
  int lost = 0;
  int hangs = 0;
  for (const auto& [call, count] : calls) {
    for (int number = 1; number <= count; ++number) {
      for (const char* const error : {"ENOSPC", "EIO", "EMFILE", "ENOMEM", "EACCES"}) {
        if (!isWhole && random() > 4.0 / (count * 5)) continue;
        layOut();
        const std::string fault = "inject=" + call + ":error=" + error + ":when=" + std::to_string(number);
        const Run result = run(Who::root, {"timeout", "20", "strace", "-f", "-o", "/dev/null", "-e", fault});
        ++runs;
        constexpr int timedOut = 124;
        if (result.status == timedOut) std::cout << "hangs: " << fault << '\n';
        hangs += result.status == timedOut ? 1 : 0;
        const Digests now = digests();
        const bool isRight = now == expected_;
        claimed += claimsSuccess(result) ? 1 : 0;
        // A log that was not written is said to be missing.
        const bool saysNoLog =
            result.output.find("The log of installed paths could not be written") != std::string::npos;
        if (claimsSuccess(result) && !isRight && !saysNoLog) {
          ++falseSuccesses;
          std::cout << "false success: " << fault << '\n' << result.output;
        }
        for (const auto& [path, digest] : now) {
          if (digest == expected_.at(path) || digest == old_.at(path) || path.ends_with(".log")) continue;
          ++lost;
          std::cout << "neither old nor new: " << path << " after " << fault << '\n' << result.output;
        }
      }
    }
  }
  say("failed system calls: " + std::to_string(runs) + " runs, " + std::to_string(claimed) +
      " succeeded all the same, " + std::to_string(falseSuccesses) + " false successes, " + std::to_string(lost) +
      " items lost or incomplete");
  EXPECT_EQ(falseSuccesses, 0);
  EXPECT_EQ(lost, 0);
  EXPECT_EQ(hangs, 0);
}

}  // namespace
