// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>
#include <unistd.h>

#include "platform/rights/HelperStart.h"
#include "platform/rights/Operation.h"
#include "support/TestMachine.h"

namespace {

TEST(OperationTest, AcceptsOnlyLaunchesOfTheInstaller) {
  const std::pair<const char*, std::vector<std::string>> others[] = {
      {"/bin/sh", {"-c", "true"}},
      {"/bin/rm", {"-fR"}},
      {"/bin/rm", {"-fR", "x"}},
      {"/bin/rm", {"-fR", "/x", "--no-preserve-root"}},
      {"/bin/rm", {"-fR", "/" + std::string(5000, 'x')}},
      {"/bin/mkdir", {"-m4775", "-p", "/x"}},
      {"/usr/sbin/chown", {"-R", "root:admin", "/x"}},
      {"/bin/chmod", {"-R", "4775", "/x"}},
      {"/bin/chmod", {"-R", "0777", "/x"}},
      {"/usr/bin/xattr", {"-dr", "security.capability", "/x"}},
      {"/bin/cp", {"-R", "/a", "/x"}},
      {"/bin/mv", {"-f", "/a"}},
      {"/bin/mv", {"-f", "/a", "/b", "/c"}},
  };
  for (const auto& [tool, arguments] : others) {
    EXPECT_FALSE(operationFor({tool, arguments}, "u")) << tool << testing::PrintToString(arguments);
  }
  EXPECT_TRUE(operationFor({"/usr/sbin/chown", {"-R", "u:admin", "/x"}}, "u"));
}

TEST(AskingTest, UsesThePromptThatTheUserSees) {
  const std::tuple<AskingMeans, std::string, std::string> cases[] = {
      // askpass, terminal, desktop; then in a console, and with a window
      {{"sudo", "pkexec", true, true, true}, "sudo -A --", "sudo -A --"},
      {{"sudo", "pkexec", false, true, true}, "sudo --", "pkexec --disable-internal-agent"},
      {{"sudo", "pkexec", false, false, true}, "pkexec --disable-internal-agent", "pkexec --disable-internal-agent"},
      {{"sudo", "pkexec", false, false, false}, "sudo -n --", "sudo -n --"},
      {{"", "pkexec", true, true, true}, "pkexec --disable-internal-agent", "pkexec --disable-internal-agent"},
      {{"", "pkexec", true, true, false}, "", ""},
  };
  const auto joined = [](const AskingMeans& means, Surface surface) {
    std::string text;
    for (const std::string& word : askingCommand(means, surface)) text += (text.empty() ? "" : " ") + word;
    return text;
  };
  for (const auto& [means, inConsole, withWindow] : cases) {
    EXPECT_EQ(joined(means, Surface::console), inConsole);
    EXPECT_EQ(joined(means, Surface::window), withWindow);
  }
}

TEST(AskingTest, IsRefusedForAProgramThatOthersCanReplace) {
  const TemporaryFolder folder;
  const fs::path program = folder.path() / "a/b/program";
  writeFile(program, "");
  EXPECT_TRUE(isOutOfReachOfOthers(program));
  fs::create_directory_symlink("a", folder.path() / "link");
  EXPECT_FALSE(isOutOfReachOfOthers(folder.path() / "link/b/program"));
  ::chmod((folder.path() / "a").c_str(), 0777);
  EXPECT_FALSE(isOutOfReachOfOthers(program));
  ::chmod((folder.path() / "a").c_str(), 01777);
  EXPECT_TRUE(isOutOfReachOfOthers(program)) << "sticky";
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to give a folder away";
  ::chmod((folder.path() / "a").c_str(), 0755);
  setOwner(folder.path() / "a/b", 65534, 0);
  EXPECT_FALSE(isOutOfReachOfOthers(program)) << "somebody else's";
}

/// Programs that ask, and how they end.
TEST(AskingTest, DistinguishesCancelledFromRefused) {
  const TemporaryFolder folder;
  const fs::path helpers = folder.path() / "Helpers";
  fs::copy(HELPERS_FOLDER, helpers);
  const fs::path pkexec = folder.path() / "pkexec";
  int turns = 0;
  const auto outcome = [&](const std::string& script) {
    writeFile(pkexec, "#!/bin/sh\n" + script + "\n");
    ::chmod(pkexec.c_str(), 0755);
    const auto started =
        startHelper({helpers, folder.path(), Surface::window, [&] { ++turns; }}, {"", pkexec, false, false, true});
    const auto* const status = std::get_if<LaunchStatus>(&started);
    return status != nullptr ? *status : launchSucceeded;
  };
  EXPECT_EQ(outcome("sleep 0.2; exit 126"), errAuthorizationCanceled);
  EXPECT_GT(turns, 0) << "others work while the user is asked";
  EXPECT_EQ(outcome("exit 127"), errAuthorizationDenied);
  EXPECT_EQ(outcome("kill -9 $$"), errAuthorizationDenied);
  EXPECT_EQ(outcome("shift; exec \"$@\" 2>/dev/null"), errAuthorizationDenied) << "no rights, or root's own";
}

}  // namespace
