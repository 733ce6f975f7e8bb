// SPDX-License-Identifier: Apache-2.0

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <sstream>

#include "platform/processes/Executables.h"
#include "platform/rights/HelperAuthorization.h"
#include "support/HelperProcess.h"

namespace {

/// Runs the program that was built, from a copy of its bundle, on a sample volume.
class QuietInstallTest : public testing::Test {
 protected:
  struct Outcome {
    int status;
    std::string output;
    std::string errors;

    [[nodiscard]] bool says(const std::string& text) const { return output.find(text) != std::string::npos; }
  };

  QuietInstallTest() {
    fs::copy(INSTALLER_BUNDLE, bundle_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  }

  /// With what a shell is given before and after the program's name.
  Outcome run(const std::string& before, const std::string& after) {
    const fs::path output = folder_.path() / "output";
    const fs::path errors = folder_.path() / "errors";
    const std::string redirected = " >" + output.string() + " 2>" + errors.string();
    const int status = std::system((before + " '" + program_.string() + "' " + after + redirected).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(output), readFile(errors)};
  }

  TemporaryFolder folder_;
  fs::path bundle_ = folder_.path() / "A copy of the Installer.app";
  fs::path program_ = bundle_ / "Contents/MacOS/Installer";
  fs::path payload_ = bundle_ / "Contents/Resources/files";
  fs::path volume_ = folder_.path() / "volume";
};

TEST_F(QuietInstallTest, RejectsInvalidTargets) {
  writeFile(folder_.path() / "file", "");
  fs::create_directories(folder_.path() / "empty");
  fs::create_directories(folder_.path() / "half/Applications");
  for (const std::string name : {"volume", "file", "empty", "half", ""}) {
    const std::string target = name.empty() ? "" : folder_.path() / name;
    const Outcome outcome = run("", "-quiet -target '" + target + "'");
    EXPECT_EQ(outcome.status, 66) << target;
    EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_EQ(run("", "-quiet -targte '" + volume_.string() + "'").status, 64);
  EXPECT_FALSE(fs::exists(volume_));
  EXPECT_EQ(namesIn(folder_.path() / "empty"), "");
  EXPECT_NE(run("", "-quiet -target '" + (folder_.path() / "half").string() + "'").errors.find("no folder \"Library\""),
            std::string::npos);
  EXPECT_EQ(run("", "-quiet").status, 66) << "the root of a Linux system is no Mac volume";
}

/// On a sample volume that is the user nobody's.
class QuietInstallAsRootTest : public QuietInstallTest {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, and to become somebody without rights";
    ASSERT_EQ(std::system((MAKE_SAMPLE_VOLUME " '" + volume_.string() + "' nobody " STAND_IN).c_str()), 0);
  }

  Outcome install(const std::string& before = "SUDO_UID=65534 LANG=C", const std::string& after = "") {
    return run(before, "-quiet -target '" + volume_.string() + "'" + after);
  }
  [[nodiscard]] std::string installed(const std::string& path) const { return readFile(volume_.string() + path); }
  /// Everything in the log is the user's, with the modes of its kind; how many items there are.
  std::size_t expectHandedOver(uid_t user) const {
    const std::string owner = std::to_string(user) + ":" + std::to_string(*groupNumber("admin"));
    std::size_t lines = 0;
    std::istringstream paths(installed(log_));
    for (std::string path; std::getline(paths, path); ++lines) {
      const fs::path item = volume_.string() + path;
      EXPECT_EQ(ownerOf(item) + " " + modeOf(item), owner + (path.ends_with(".csv") ? " 644" : " 775")) << path;
      if (!fs::is_directory(item)) continue;
      for (const auto& entry : fs::recursive_directory_iterator(item)) EXPECT_EQ(ownerOf(entry.path()), owner) << entry;
    }
    return lines;
  }
  /// Lets everybody start the program.
  void openToAll() const {
    for (const fs::path& path : {folder_.path(), bundle_}) ::chmod(path.c_str(), 0755);
  }

  const std::string log_ = "/Library/Application Support/Corvane/Dunmore 3 Installer.log";
};

TEST_F(QuietInstallAsRootTest, InstallsForWhoCalledSudo) {
  const Outcome outcome = install();
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(outcome.says("Hosts found: 4\n")) << outcome.output;
  EXPECT_TRUE(outcome.says("Failures: 0\n")) << outcome.output;
  EXPECT_TRUE(outcome.says(volume_.string() + log_));

  const std::size_t lines = expectHandedOver(65534);
  EXPECT_TRUE(outcome.says("Items installed: " + std::to_string(lines) + ", in 29 places\n")) << outcome.output;
  EXPECT_EQ(modeOf(volume_.string() + log_), "644");
  for (const auto& entry : fs::recursive_directory_iterator(volume_ / "Users/nobody")) {
    EXPECT_TRUE(ownerOf(entry.path()).starts_with("65534:")) << entry.path();
    EXPECT_EQ(entry.path().filename().string().find(".installing"), std::string::npos) << entry.path();
  }
  const std::string support = "/Users/nobody/Library/Application Support/Corvane/Pelloria 4/";
  EXPECT_EQ(installed(support + "manifest.xml"), "(no such file)");
  EXPECT_EQ(installed(support + "Packs/Winter.bundle/manifest.xml"), "<manifest/>\n");
  EXPECT_TRUE(fs::exists(volume_ / "Users/nobody/.local/share/applications/com.corvane.dunmore3.desktop"));
  EXPECT_FALSE(fs::exists(volume_ / "Library/Application Support/Adobe/Lightroom")) << "a Lightroom plug-in";
  EXPECT_EQ(namesIn(volume_ / "Applications/Adobe Photoshop CS5/Plug-Ins"), "");

  const std::string before = outcome.output + installed(log_);
  EXPECT_EQ(install().output + installed(log_), before) << "the same again";
}

TEST_F(QuietInstallAsRootTest, InstallsAnotherProductFromAnotherPayload) {
  fs::remove_all(payload_);
  fs::remove(bundle_ / "Contents/Info.plist");
  writeFile(payload_ / "PHOTOSHOP_PLUGINS/Granby.txt", "Granby");
  std::string wide = "\xFF\xFE";
  for (const char c : std::string("company_name = Tamsin; product_name = Granby;")) wide += std::string{c, '\0'};
  writeFile(bundle_ / "Contents/Resources/en.lproj/installer.strings", wide);
  const Outcome outcome = install();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.output.starts_with("Granby was installed on ")) << outcome.output;
  EXPECT_EQ(installed("/Applications/Adobe Photoshop CS6/Plug-Ins/Granby.txt"), "Granby");
  EXPECT_NE(installed("/Library/Application Support/Tamsin/Granby Installer.log").find("/Plug-Ins/Granby.txt\n"),
            std::string::npos);
}

TEST_F(QuietInstallAsRootTest, NamesFailuresInItsSummary) {
  ::mkfifo((payload_ / "PHOTOSHOP_PLUGINS/Corvane/Dunmore 3.plugin/Contents/pipe").c_str(), 0600);
  writeFile(payload_ / "PHOTOSHOP_PLUGINS/Corvane/\x1b[31mred", "");
  const Outcome outcome = install();
  EXPECT_EQ(outcome.errors.find('\x1b'), std::string::npos) << "control characters are escaped";
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.output.starts_with("Dunmore 3 was not installed completely on ")) << outcome.output;
  EXPECT_TRUE(
      outcome.says("Failures: 1\n  /Applications/Adobe Photoshop CS6/Plug-Ins/Corvane/Dunmore 3.plugin: "
                   "Operation not supported\n"))
      << outcome.output;
  EXPECT_NE(outcome.errors.find("A file could not be installed: "), std::string::npos);
  EXPECT_EQ(installed(log_).find("CC 2019"), std::string::npos) << "no further host";
}

TEST_F(QuietInstallAsRootTest, NamesNoLogThatWasNotWritten) {
  for (const char* const folder : {"HD", "LIGHTROOM", "PHOTOSHOP"}) fs::remove_all(payload_ / folder);
  writeFile(volume_ / "Library/Application Support/Corvane", "in the way of the log's folder");
  const Outcome outcome = install();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.says("\nThe log of installed paths could not be written.\n")) << outcome.output;
  EXPECT_FALSE(outcome.says("Log: ")) << outcome.output;
  EXPECT_FALSE(outcome.says("Items installed: 0")) << outcome.output;
}

TEST_F(QuietInstallAsRootTest, NeedsTheDescriptionOfItsWindow) {
  fs::remove(bundle_ / "Contents/Resources/MainWindow.ui");
  const Outcome outcome = run("QT_QPA_PLATFORM=offscreen timeout 20", "-target '" + volume_.string() + "'");
  EXPECT_EQ(outcome.status, 69);
  EXPECT_NE(outcome.errors.find("no window: "), std::string::npos) << outcome.errors;
}

TEST_F(QuietInstallAsRootTest, DoesNotAskWithoutATerminal) {
  openToAll();
  const Outcome outcome = install("setsid -w setpriv --reuid=65534 --regid=65534 --clear-groups --reset-env");
  EXPECT_EQ(outcome.status, 0);
  // With sudo it turns out at the first launch, and without any such program before it.
  const bool isTried = findExecutable("sudo").has_value();
  EXPECT_EQ(outcome.says("  Administrator rights were refused.\n"), isTried) << outcome.output;
  EXPECT_EQ(outcome.errors.ends_with("SFAuthorization permit with rights error\n"), !isTried) << outcome.errors;
  EXPECT_TRUE(outcome.says("Items installed: 0\n")) << outcome.output;
  EXPECT_EQ(namesIn(volume_ / "Library/Application Support"), "Adobe");
  EXPECT_TRUE(fs::exists(volume_ / "Users/nobody/Library/Application Support/Corvane/Pelloria 4/manifest.xml"));
}

TEST_F(QuietInstallAsRootTest, ReportsFailuresByItsStatus) {
  EXPECT_EQ(run("SUDO_UID=65534", "-quiet -target '" + volume_.string() + "' >/dev/full; echo $? >" +
                                      (folder_.path() / "status").string() + "; true")
                .status,
            0);
  EXPECT_EQ(readFile(folder_.path() / "status"), "74\n") << "nobody can read the summary";
  const std::string program = program_.string();
  // Two at a time: the second waits for the first, which is held up.
  const fs::path lock = folder_.path() / "lock";
  const std::string script = "flock '" + volume_.string() +
                             "' sleep 1 & sleep 0.2; SUDO_UID=65534 timeout --preserve-status -s TERM 0.4 '" + program +
                             "' -quiet -target '" + volume_.string() + "' >'" + lock.string() + "' 2>&1; echo $? >>'" +
                             lock.string() + "'; wait";
  EXPECT_EQ(std::system(script.c_str()), 0);
  const std::string said = readFile(lock);
  EXPECT_NE(said.find("Waiting for another installer to finish"), std::string::npos) << said;
  EXPECT_NE(said.find("Stopped by signal 15. Nothing was changed.\n"), std::string::npos) << said;
  EXPECT_TRUE(said.ends_with("\n143\n")) << said;
}

/// As an account made for the purpose, which may use sudo, with a program that gives its password.
class QuietInstallAsUserTest : public QuietInstallAsRootTest {
 protected:
  void SetUp() override {
    QuietInstallAsRootTest::SetUp();
    if (IsSkipped()) return;
    if (!isIsolated()) GTEST_SKIP() << "needs tests/isolated: it creates an account";
    if (!findExecutable("sudo") || !groupNumber("sudo")) GTEST_SKIP() << "sudo is not installed";
    ASSERT_EQ(std::system(("useradd -M -G sudo " + name_ + " && echo " + name_ + ":secret | chpasswd").c_str()), 0);
    openToAll();
    fs::remove_all(volume_);
    ASSERT_EQ(std::system((MAKE_SAMPLE_VOLUME " '" + volume_.string() + "' " + name_ + " " STAND_IN).c_str()), 0);
    writeFile(asked_, "");
    ::chmod(asked_.c_str(), 0666);
  }
  /// Another test of this process may create the account again.
  void TearDown() override {
    if (IsSkipped()) return;
    EXPECT_EQ(std::system(("userdel -f " + name_ + " 2>/dev/null").c_str()), 0);
  }

  void writeAskpass(const std::string& answer) const {
    writeFile(askpass_, "#!/bin/sh\necho asked >>" + asked_.string() + "\n" + answer + "\n");
    ::chmod(askpass_.c_str(), 0755);
  }

  /// Installs; `answer` is what the program that is asked for the password does.
  Outcome installAnswering(const std::string& answer) {
    writeAskpass(answer);
    return install("setsid -w setpriv --reuid=" + name_ + " --regid=" + name_ +
                   " --init-groups --reset-env env LANG=C SUDO_ASKPASS=" + askpass_.string());
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

TEST_F(QuietInstallAsUserTest, InstallsWithOnePrompt) {
  const Outcome outcome = installAnswering("echo secret");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_TRUE(outcome.says("Hosts found: 4\n")) << outcome.output << outcome.errors;
  EXPECT_TRUE(outcome.says("Failures: 0\n")) << outcome.output << outcome.errors;
  EXPECT_EQ(readFile(asked_), "asked\n");
  const std::string owner = std::to_string(*userNumber(name_)) + ":" + std::to_string(*groupNumber("admin"));
  const std::size_t lines = expectHandedOver(*userNumber(name_));
  EXPECT_TRUE(outcome.says("Items installed: " + std::to_string(lines) + ", in 29 places\n")) << outcome.output;
  EXPECT_EQ(ownerOf(volume_.string() + log_) + " " + modeOf(volume_.string() + log_), owner + " 644");

  // Over what root owns now, once more.
  ASSERT_EQ(std::system(("chown -R 0:0 '" + volume_.string() + "/Applications'").c_str()), 0);
  const Outcome again = installAnswering("echo secret");
  EXPECT_EQ(again.output, outcome.output) << again.errors;
  EXPECT_EQ(ownerOf(volume_ / "Applications/Corvane Dunmore 3 Studio.app/Contents"), owner);
}

TEST_F(QuietInstallAsUserTest, WhatWasInstalledIsRemovedWithOnePrompt) {
  EXPECT_TRUE(installAnswering("echo secret").says("Failures: 0\n"));
  ASSERT_EQ(std::system(("chown -R 0:0 '" + volume_.string() + "/Applications'").c_str()), 0);
  program_ = bundle_ / "Contents/MacOS/InstallerTool";
  const auto remove = [&](const std::string& answer) {
    writeAskpass(answer);
    return run("setsid -w setpriv --reuid=" + name_ + " --regid=" + name_ +
                   " --init-groups --reset-env env LANG=C SUDO_ASKPASS=" + askpass_.string(),
               "remove --yes --target '" + volume_.string() + "'");
  };
  writeFile(asked_, "");
  EXPECT_EQ(remove("exit 1").status, 77);
  EXPECT_TRUE(fs::exists(volume_ / "Applications/Corvane Dunmore 3 Studio.app"));
  writeFile(asked_, "");
  const Outcome outcome = remove("echo secret");
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
  EXPECT_EQ(readFile(asked_), "asked\n");
  EXPECT_FALSE(fs::exists(volume_ / "Applications/Corvane Dunmore 3 Studio.app"));
  EXPECT_FALSE(fs::exists(volume_ / "Library/Application Support/Corvane"));
  EXPECT_FALSE(fs::exists(volume_ / "Library/Application Support/.installing"));
}

TEST_F(QuietInstallAsUserTest, StopsWhenThePasswordIsCancelledOrRefused) {
  const Outcome outcome = installAnswering("exit 1");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.says("Items installed: 0\n")) << outcome.output;
  EXPECT_TRUE(outcome.says("  Administrator rights were refused.\n")) << outcome.output;
  EXPECT_EQ(readFile(asked_), "asked\n") << "and nobody is asked again";
  EXPECT_EQ(namesIn(volume_ / "Library/Application Support"), "Adobe");
  EXPECT_EQ(statusOfLaunches("exit 1"), 6) << "cancelled";
  EXPECT_EQ(statusOfLaunches("echo secret"), 0);
  EXPECT_EQ(readFile(asked_), "asked\nasked\nasked\n");
  ASSERT_EQ(std::system(("gpasswd -d " + name_ + " sudo >/dev/null").c_str()), 0);
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
  const Outcome outcome = install("setsid -w setpriv --reuid=" + name_ + " --regid=" + name_ +
                                  " --init-groups --reset-env env DISPLAY=:77");
  EXPECT_TRUE(outcome.says("Items installed: 34, in 29 places\n")) << outcome.output << outcome.errors;
  EXPECT_EQ(statusOfLaunches("DISPLAY", ":77", volume_), 0);
  EXPECT_EQ(statusOfLaunches("DISPLAY", ":77", folder_.path()), 5) << "nobody there to be asked";
}

TEST_F(QuietInstallAsRootTest, ContinuesWhenItsOutputIsClosed) {
  const std::string status = folder_.path() / "status";
  EXPECT_EQ(
      run("(SUDO_UID=65534", "-quiet -target '" + volume_.string() + "' >&- 2>&- <&-; echo $? >" + status + ")").status,
      0);
  EXPECT_EQ(readFile(status), "74\n") << "nobody can read the summary";
  EXPECT_NE(installed(log_).find("CC 2015.5"), std::string::npos) << "up to the last host";
}

}  // namespace
