// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/processes/ChildProcess.h"
#include "support/TestMachine.h"

namespace {

using namespace std::chrono_literals;

class WorkspaceTest : public MachineTest {
 protected:
  WorkspaceTest() { ::chmod(on("").parent_path().c_str(), 0755); }
  ~WorkspaceTest() override {
    while (!children_.empty()) end(*children_.begin());
  }

  /// A program that runs as a child of the test's until the test ends it.
  pid_t begin(const fs::path& program, const std::vector<std::string>& arguments = {}) {
    return *children_.insert(*spawn({.executable = program, .arguments = arguments})).first;
  }
  void end(pid_t child) {
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    children_.erase(child);
  }

  [[nodiscard]] std::string pathOf(const std::string& name) const { return "/Applications/" + own_ + name + ".app"; }
  /// Makes an application on the volume, and gives its program. Every name begins with the test's own.
  fs::path makeApplication(const std::string& name, const std::string& content = readFile(STAND_IN)) {
    const fs::path program = on(pathOf(name)) / "Contents/MacOS" / (own_ + name);
    writeFile(program, content);
    ::chmod(program.c_str(), 0755);
    return program;
  }

  /// Names of this test's applications that run, without what they begin with, each followed by a blank.
  [[nodiscard]] std::string running() const {
    std::string names;
    for (const std::string& name : workspace_.launchedApplications()) {
      if (name.starts_with(own_)) names += name.substr(own_.size()) + " ";
    }
    return names;
  }

  /// Has the terminations of this test's applications noted, each with what runs then.
  [[nodiscard]] Workspace::Observation observe() {
    return workspace_.observeTerminations([this](const std::string& name) {
      if (name.starts_with(own_)) ended_ += name.substr(own_.size()) + "(" + running() + ") ";
    });
  }

  /// Runs the loop until it is so; false when that takes too long.
  bool eventually(const std::function<bool()>& isSo) {
    const auto limit = RunLoop::Clock::now() + 20s;
    while (!isSo() && RunLoop::Clock::now() < limit) {
      runLoop_.runBeforeDate(RunLoop::Clock::now() + 10ms);
      ::usleep(1000);
    }
    return isSo();
  }

  /// What an application writes that is a shell's commands.
  std::string writtenBy(LinuxWorkspace& workspace, const std::string& commands) {
    fs::create_directories(on("/out"));
    ::chmod(on("/out").c_str(), 0777);
    makeApplication("Writer", "#!/bin/sh\n{ " + commands + "; } >\"$1/writing\"\nmv \"$1/writing\" \"$1/written\"\n");
    EXPECT_NE(workspace.launchHidden(pathOf("Writer"), {on("/out"), "-no-ui $HOME *"}), nullptr);
    EXPECT_TRUE(eventually([&] { return fs::exists(on("/out/written")); }));
    return readFile(on("/out/written"));
  }

  const std::string own_ = "T" + std::to_string(::getpid()) + "-";
  /// Runs until it is killed, as what it is.
  const std::string waitingScript_ = "#!/bin/sh -e\nkill -STOP $$\n";
  std::set<pid_t> children_;
  std::string ended_;
  PollRunLoop runLoop_;
  Volume volume_{on("").string(), machine_.inBundle("").parent_path().parent_path()};
  /// Whom the tests as root launch for.
  PosixUser user_{::geteuid() == 0 ? UserAccount{65534, 65534, "nobody", "/nonexistent"} : machine_.account(), {"en"}};
  LinuxWorkspace workspace_{
      volume_, files_, platform_.bundles, user_, log_, runLoop_, UserSession(user_, HELPERS_FOLDER)};
};

TEST_F(WorkspaceTest, ListsApplicationsInTheOrderOfTheirStart) {
  const fs::path named = makeApplication("File");
  makeBundle(on(pathOf("File")), {{"CFBundleName", own_ + "Named"}});
  begin(makeApplication("Script", waitingScript_));
  begin(named);
  begin(makeApplication("Removed"));
  begin(named);
  begin("/usr/bin/tail", {"-fn0", makeApplication("Edited", waitingScript_)});
  fs::remove_all(on(pathOf("Removed")));
  EXPECT_EQ(running(), "Script Named Removed Named ");
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become somebody else";
  ASSERT_EQ(::seteuid(65534), 0);
  const std::string othersSee = running();
  ASSERT_EQ(::seteuid(0), 0);
  EXPECT_EQ(othersSee, "Script Named Removed Named ");
}

TEST_F(WorkspaceTest, ReportsEachLaunchOnce) {
  begin(makeApplication("Before"));
  std::string launched;
  auto observation = workspace_.observeLaunches([&](const std::string& name) {
    if (name.starts_with(own_)) launched += name.substr(own_.size()) + " ";
  });
  begin(makeApplication("First"));
  EXPECT_EQ(running(), "Before First ") << "which does not take the launch for known";
  ASSERT_TRUE(eventually([&] { return launched == "First "; })) << launched;
  begin(makeApplication("Second"));
  ASSERT_TRUE(eventually([&] { return launched == "First Second "; })) << launched;
}

TEST_F(WorkspaceTest, ReportsEachTerminationOnce) {
  const pid_t first = begin(makeApplication("First"));
  const pid_t second = begin(makeApplication("Second"));
  auto observation = observe();
  end(first);
  EXPECT_EQ(ended_, "") << "only from a run of the loop";
  ASSERT_TRUE(eventually([&] { return ended_ == "First(Second ) "; })) << ended_;
  const pid_t third = begin(makeApplication("Third"));  // found when the second ends
  end(second);
  ASSERT_TRUE(eventually([&] { return ended_ == "First(Second ) Second(Third ) "; })) << ended_;
  end(third);
  ASSERT_TRUE(eventually([&] { return ended_ == "First(Second ) Second(Third ) Third() "; })) << ended_;

  const pid_t fourth = begin(makeApplication("Fourth"));
  EXPECT_EQ(running(), "Fourth ");  // who was told that it runs is told when it ends, unless nobody asks any more
  observation.reset();
  end(fourth);
  EXPECT_FALSE(runLoop_.runBeforeDate(RunLoop::Clock::now()));
  EXPECT_TRUE(ended_.ends_with("Third() "));
}

TEST_F(WorkspaceTest, LaunchesAsTheUserInASessionOfItsOwn) {
  ::setenv("SECRET", "of ours", 1);
  const std::string written =
      writtenBy(workspace_, "grep -E '^(Uid|Gid|CapPrm|NSsid)' /proc/self/status; env; pwd; echo \"<$2>\"");
  ::unsetenv("SECRET");
  const auto says = [&](const std::string& text) { return written.find(text) != std::string::npos; };
  const std::string user = std::to_string(user_.account().id);
  EXPECT_TRUE(says("Uid:\t" + user + "\t" + user + "\t" + user + "\t" + user)) << written;
  if (::geteuid() == 0) {
    EXPECT_TRUE(says("Gid:\t65534\t65534\t65534\t65534")) << written;
    EXPECT_TRUE(says("CapPrm:\t0000000000000000")) << written;
  }
  EXPECT_TRUE(says("HOME=" + user_.account().home + "\n")) << written;
  EXPECT_FALSE(says("SECRET")) << written;
  EXPECT_TRUE(says("\n/\n")) << written;
  EXPECT_TRUE(says("<-no-ui $HOME *>\n")) << written;
  EXPECT_FALSE(says("NSsid:\t" + std::to_string(::getsid(0)) + "\n"));
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "nobody has to wait for it";
  EXPECT_EQ(errno, ECHILD) << "nobody has to wait for it";
}

TEST_F(WorkspaceTest, LaunchesInAllGroupsOfTheUser) {
  if (!isIsolated()) GTEST_SKIP() << "needs the account of tests/isolated";
  const uid_t id = *userNumber("installer-trial");
  const PosixUser user{{id, *groupNumber("installer-trial"), "installer-trial", "/nonexistent"}, {"en"}};
  LinuxWorkspace workspace{volume_, files_, platform_.bundles, user, log_, runLoop_, UserSession(user, HELPERS_FOLDER)};
  EXPECT_EQ(writtenBy(workspace, "id -Gn"), "installer-trial games users\n");
}

TEST_F(WorkspaceTest, TerminatesLaunchedApplications) {
  makeApplication("Studio");
  const auto application = workspace_.launchHidden(pathOf("Studio"), {});
  const auto another = workspace_.launchHidden(pathOf("Studio"), {});
  ASSERT_NE(application, nullptr);
  ASSERT_NE(another, nullptr);
  EXPECT_EQ(running(), "Studio Studio ") << "each a new instance";
  const auto observation = observe();
  application->terminate();
  ASSERT_TRUE(eventually([&] { return ended_ == "Studio(Studio ) "; })) << ended_;
  application->terminate();
  EXPECT_EQ(running(), "Studio ") << "and not another one";
  another->terminate();
  EXPECT_TRUE(eventually([&] { return running().empty(); }));
}

TEST_F(WorkspaceTest, RejectsProgramsOutsideTheBundle) {
  const auto canLaunch = [&](const std::string& path) { return workspace_.launchHidden(path, {}) != nullptr; };
  EXPECT_FALSE(canLaunch("/None.app"));
  ::chmod(makeApplication("Plain").c_str(), 0644);
  EXPECT_FALSE(canLaunch(pathOf("Plain")));
  makeApplication("Climbing");
  for (const std::string& name : {"../MacOS/" + own_ + "Climbing", std::string("..")}) {
    makeBundle(on(pathOf("Climbing")), {{"CFBundleExecutable", name}, {"CFBundleIconFile", "../Info.plist"}});
    EXPECT_FALSE(canLaunch(pathOf("Climbing"))) << name;
    EXPECT_EQ(workspace_.iconFile(pathOf("Climbing")), "");
  }
  fs::create_directories(on("/Linked.app/Contents/MacOS"));
  fs::create_symlink(STAND_IN, on("/Linked.app/Contents/MacOS/Linked"));
  EXPECT_FALSE(canLaunch("/Linked.app")) << "the link leads nowhere on the volume";
  ::chmod(makeApplication("Roots").c_str(), 0700);
  if (::geteuid() == 0) {
    EXPECT_FALSE(canLaunch(pathOf("Roots"))) << "what the user may not start";
  }
  EXPECT_EQ(running(), "");
}

TEST_F(WorkspaceTest, RegistersApplicationsAsDesktopEntries) {
  const std::string name = "Été 100% $HOME";
  makeApplication(name);
  makeBundle(on(pathOf(name)), {{"CFBundleIdentifier", "com.corvane.ete"}, {"CFBundleName", "Été\\3"}});
  EXPECT_EQ(platform_.launchServices.registerApplication(pathOf(name), /*update=*/true), LaunchServices::noErr);
  const fs::path entry = on(machine_.home() + "/.local/share/applications/com.corvane.ete.desktop");
  const std::string escaped = own_ + "Été 100%% \\\\$HOME";
  EXPECT_EQ(modeOf(entry), "644");
  EXPECT_EQ(readFile(entry), "[Desktop Entry]\nType=Application\nVersion=1.0\nName=Été\\\\3\nExec=\"" +
                                 on("").string() + "/Applications/" + escaped + ".app/Contents/MacOS/" + escaped +
                                 "\"\nTerminal=false\nCategories=Graphics;\n");
}

}  // namespace
