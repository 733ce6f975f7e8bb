// SPDX-License-Identifier: Apache-2.0

#include <grp.h>

#include <csignal>

#include "platform/processes/Executables.h"
#include "platform/rights/HelperAuthorization.h"
#include "shell/QuietInstallTest.h"

namespace {

/// As an account made for the purpose, which may use sudo, with a program that gives its password.
class QuietInstallAsUserTest : public QuietInstallAsRootTest {
 protected:
  void SetUp() override {
    if (!isIsolated()) GTEST_SKIP() << "needs tests/isolated: it creates an account";
    if (!findExecutable("sudo") || !groupNumber("sudo")) GTEST_SKIP() << "sudo is not installed";
    ASSERT_EQ(std::system(("useradd -M -G sudo " + name_ + " && echo " + name_ + ":secret | chpasswd").c_str()), 0);
    account_ = name_;
    QuietInstallAsRootTest::SetUp();
  }
  /// Another test of this process may create the account again.
  void TearDown() override {
    if (IsSkipped()) return;
    EXPECT_EQ(std::system(("userdel -f " + name_ + " 2>/dev/null").c_str()), 0);
  }

  void writeAskpass(const std::string& answer) const {
    writeFile(asked_, "");
    ::chmod(asked_.c_str(), 0666);
    writeFile(askpass_, "#!/bin/sh\necho asked >>" + asked_.string() + "\n" + answer + "\n");
    ::chmod(askpass_.c_str(), 0755);
  }
  /// What a shell is given to start a program for the account in its own session, with the variables.
  [[nodiscard]] std::string asUser(const std::string& variables) const {
    return "setsid -w setpriv --reuid=" + name_ + " --regid=" + name_ + " --init-groups --reset-env env " + variables;
  }
  /// `answer` is what the program that is asked for the password does.
  std::string asking(const std::string& answer) {
    writeAskpass(answer);
    return asUser("LANG=C SUDO_ASKPASS=" + askpass_.string());
  }

  /// What a launch with rights gives the account, twice in a row: the system's number without its thousands.
  int statusOfLaunches(const std::string& answer) {
    writeAskpass(answer);
    return statusOfLaunches("SUDO_ASKPASS", askpass_, volume_);
  }
  /// The same with this variable and no other.
  int statusOfLaunches(const char* variable, const std::string& value, const fs::path& volume) {
    const uid_t id = *userNumber(name_);
    const HelperSetup setup{bundle_ / "Contents/Helpers", volume, Surface::console};
    const pid_t child = ::fork();
    if (child == 0) {
      const bool isUser = ::setsid() > 0 && ::initgroups(name_.c_str(), id) == 0 && ::setgid(id) == 0 &&
                          ::setuid(id) == 0 && ::clearenv() == 0 && ::setenv(variable, value.c_str(), 1) == 0;
      RecordingLog log;
      const Volume opened(volume, bundle_);
      HelperAuthorization authorization(opened, setup, log);
      std::unique_ptr<CommunicationsPipe> pipe;
      const auto launch = [&] {
        const auto status = authorization.executeWithPrivileges("/usr/bin/touch", {"/Applications/x"}, pipe);
        authorization.waitForAnyChild();
        return status;
      };
      const LaunchStatus status = launch();
      const bool isLast = isUser && authorization.obtain(Authorization::extendRights) && launch() == status;
      std::_Exit(!isLast ? 1 : status == launchSucceeded ? 0 : -60000 - status);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WEXITSTATUS(status);
  }

  const std::string name_ = "installer-test-" + std::to_string(::getpid());
  const fs::path askpass_ = folder_.path() / "askpass";
  const fs::path asked_ = folder_.path() / "asked";
};

TEST_F(QuietInstallAsUserTest, InstallsAndRemovesWithOnePromptEach) {
  const Outcome outcome = install(asking("echo secret"));
  EXPECT_EQ(readFile(asked_), "asked\n");
  const uid_t user = *userNumber(name_);
  expectHandedOver(user, outcome);
  EXPECT_TRUE(ownerOf(volume_.string() + log_).starts_with(std::to_string(user) + ":"));

  // Over what root owns now, once more.
  ASSERT_EQ(shell("chown -R 0:0 '" + volume_.string() + "/Applications'"), 0);
  EXPECT_EQ(install(asking("echo secret")).output, outcome.output);
  EXPECT_TRUE(ownerOf(studio_ / "Contents").starts_with(std::to_string(user) + ":"));

  ASSERT_EQ(shell("chown -R 0:0 '" + volume_.string() + "/Applications'"), 0);
  const std::string remove = " '" + bundle_.string() + "/Contents/MacOS/InstallerTool' remove --yes -" + target_;
  EXPECT_EQ(shell(asking("exit 1") + remove), 77);
  EXPECT_TRUE(fs::exists(studio_));
  EXPECT_EQ(shell(asking("echo secret") + remove), 0) << output();
  EXPECT_EQ(readFile(asked_), "asked\n");
  EXPECT_FALSE(fs::exists(studio_));
  EXPECT_EQ(namesIn(volume_ / "Library/Application Support"), "Adobe");
}

TEST_F(QuietInstallAsUserTest, StopsWhenThePasswordIsCancelledOrRefused) {
  const Outcome outcome = install(asking("exit 1"));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.says("Items installed: 0\n")) << outcome.output;
  EXPECT_TRUE(outcome.says("  Administrator rights were refused.\n")) << outcome.output;
  EXPECT_EQ(readFile(asked_), "asked\n") << "and nobody is asked again";
  EXPECT_EQ(namesIn(volume_ / "Library/Application Support"), "Adobe");
  EXPECT_EQ(statusOfLaunches("exit 1"), 6) << "cancelled";
  EXPECT_EQ(readFile(asked_), "asked\n");
  EXPECT_EQ(statusOfLaunches("echo secret"), 0);
  EXPECT_EQ(readFile(asked_), "asked\n");
  ASSERT_EQ(shell("gpasswd -d " + name_ + " sudo"), 0);
  EXPECT_EQ(statusOfLaunches("echo secret"), 5) << "refused";
  fs::remove(bundle_ / "Contents/Helpers/rights");
  EXPECT_EQ(statusOfLaunches("echo secret"), 5);
}

/// With a bus of the test's own, on which polkit lets the account have the helper on one volume.
class QuietInstallByPolkitTest : public QuietInstallAsUserTest {
 protected:
  void SetUp() override {
    QuietInstallAsUserTest::SetUp();
    if (IsSkipped()) return;
    if (!findExecutable("pkexec") || !findExecutable("dbus-daemon")) GTEST_SKIP() << "pkexec or dbus is not installed";
    writeFile(rule_, "polkit.addRule(function(action, subject) { if (subject.user == '" + name_ +
                         "' && action.lookup('command_line').endsWith('Helpers/rights " + volume_.string() +
                         "')) return polkit.Result.YES; });\n");
    ::chmod(rule_.c_str(), 0644);
    fs::create_directories("/run/dbus");
    isBusMine_ = std::system(("dbus-daemon --system --fork --print-pid >" + pid_.string()).c_str()) == 0;
    ASSERT_TRUE(isBusMine_);
  }
  void TearDown() override {
    fs::remove(rule_);
    if (isBusMine_) {
      ::kill(std::stoi(readFile(pid_)), SIGTERM);  // polkit ends with it
      for (const char* const left : {"/run/dbus/pid", "/run/dbus/system_bus_socket"}) fs::remove(left);
    }
    QuietInstallAsUserTest::TearDown();
  }

  const fs::path rule_ = "/etc/polkit-1/rules.d/00-" + name_ + ".rules";
  const fs::path pid_ = folder_.path() / "bus";
  bool isBusMine_ = false;
};

TEST_F(QuietInstallByPolkitTest, InstallsUnderADesktop) {
  const Outcome outcome = install(asUser("DISPLAY=:77"));
  EXPECT_TRUE(outcome.says("Items installed: 34, in 29 places\n")) << outcome.output << outcome.errors;
  EXPECT_EQ(statusOfLaunches("DISPLAY", ":77", volume_), 0);
  EXPECT_EQ(statusOfLaunches("DISPLAY", ":77", folder_.path()), 5) << "nobody there to be asked";
}

}  // namespace
