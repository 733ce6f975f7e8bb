#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "foundation/Text.h"
#include "support/TestMachine.h"

namespace {

class ToolsTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path on(const std::string& path) const { return machine_.onVolume(path); }

  /// The command's arguments with the volume's folder cut off, joined by "|".
  [[nodiscard]] std::string resolved(const char* tool, const std::vector<std::string>& arguments) const {
    const auto command = tools_.resolve(tool, arguments);
    if (!command) return "(none)";
    std::string text = fs::path(command->executable).filename();
    for (const std::string& argument : command->arguments) {
      text += "|" + replacingOccurrences(argument, machine_.onVolume("").string(), "VOLUME");
    }
    return text;
  }

  /// Runs a tool as the install does; its status and what it wrote.
  std::pair<LaunchStatus, std::string> run(const char* tool, const std::vector<std::string>& arguments) {
    const auto authorization = real_.createAuthorization();
    std::unique_ptr<CommunicationsPipe> pipe;
    const LaunchStatus status = authorization->executeWithPrivileges(tool, arguments, pipe);
    authorization->waitForAnyChild();
    std::string output(1000, '\0');
    output.resize(pipe != nullptr ? pipe->read(output.data(), output.size()) : 0);
    return {status, output};
  }

  TestMachine machine_;
  Volume volume_{machine_.onVolume("").string(), machine_.inBundle("..").lexically_normal().parent_path().string()};
  PosixUser user_{machine_.account(), {"en"}};
  SystemTools tools_{volume_, user_, machine_.inBundle("Helpers").string(), "/registered"};
  LinuxAuthorizations real_{tools_};
};

TEST_F(ToolsTest, StandInForAMacs) {
  fs::create_directory_symlink("/Library", on("/link"));
  const std::string group = std::to_string(*groupNumber("admin"));
  EXPECT_EQ(resolved("/bin/rm", {"-fR", "/link/x"}), "rm|-fR|VOLUME/Library/x");
  EXPECT_EQ(resolved("/bin/rm", {"-fR", "/link"}), "rm|-fR|VOLUME/link");
  EXPECT_EQ(resolved("/bin/mkdir", {"-m775", "-p", "/link/x/y"}), "mkdir|-m775|-p|VOLUME/Library/x/y");
  EXPECT_EQ(resolved("/usr/sbin/chown", {"-R", "root:admin", "/link/x"}),
            "chown|-R|+0:+" + group + "|VOLUME/Library/x");
  EXPECT_EQ(resolved("/usr/sbin/chown", {"-R", "nobody at all:admin", "/x"}), "chown|-R|nobody at all:admin|VOLUME/x");
  EXPECT_EQ(resolved("/bin/chmod", {"-R", "0775", "/x"}), "chmod|-R|00775|VOLUME/x");
  EXPECT_EQ(resolved("/usr/sbin/chmod", {"-R", "0644", "/x"}), "chmod|-R|00644|VOLUME/x");
  EXPECT_EQ(resolved("/bin/chmod", {"-R", "0775", "/link"}), "true") << "a Mac's does not follow the link";
  EXPECT_EQ(resolved("/usr/bin/touch", {"/x"}), "touch|VOLUME/x");
  EXPECT_EQ(resolved("/usr/bin/xattr", {"-dr", "com.apple.quarantine", "/x"}),
            "xattr|-dr|com.apple.quarantine|VOLUME/x");
  constexpr const char* lsregister =
      "/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/"
      "Versions/A/"
      "Support/lsregister";
  EXPECT_EQ(resolved(lsregister, {"-apps"}), "true") << "nothing is registered";
  fs::create_directories(on("/registered"));
  EXPECT_EQ(resolved(lsregister, {"-apps"}), "update-desktop-database|-q|VOLUME/registered");
}

TEST_F(ToolsTest, AreRefusedWhatNobodyMayDo) {
  EXPECT_EQ(resolved("/bin/sh", {"-c", "true"}), "(none)");
  EXPECT_EQ(resolved("rm", {"-fR", "/x"}), "(none)");
  const std::string own = machine_.inBundle("Resources").string();
  EXPECT_EQ(resolved("/bin/rm", {"-fR", own}), "(none)");
  EXPECT_EQ(resolved("/bin/cp", {"-R", "/x", own}), "(none)");
  EXPECT_EQ(resolved("/bin/cp", {"-R", own, "/x"}), "cp|-R|" + own + "|VOLUME/x");
  EXPECT_EQ(resolved("/bin/rm", {"-fR", std::string("/x\0y", 4)}), "(none)");
  fs::create_directory_symlink("/nowhere", on("/dangling"));
  EXPECT_EQ(resolved("/bin/mkdir", {"-m775", "-p", "/dangling/x/y"}), "(none)")
      << "a Mac's does not make what it leads to";
}

TEST_F(ToolsTest, RunWithTheirOutputAndWithoutAShell) {
  EXPECT_EQ(run("/usr/bin/no-such-tool", {}).first, errAuthorizationToolExecuteFailure);
  EXPECT_EQ(run("/usr/bin/touch", {"/a $(touch b); 'c'"}), std::pair(launchSucceeded, std::string()));
  EXPECT_TRUE(fs::exists(on("/a $(touch b); 'c'")));
  EXPECT_EQ(run("/bin/rm", {"-fRv", "/a $(touch b); 'c'"}).second.substr(0, 8), "removed ");
  EXPECT_EQ(run("/bin/mkdir", {"/none/below"}).first, launchSucceeded) << "a tool that fails was launched all the same";
  EXPECT_EQ(run("/usr/bin/touch", {std::string(3'000'000, 'x')}).first, errAuthorizationToolExecuteFailure)
      << "more than an argument may have";
}

TEST_F(ToolsTest, CopyAllOrNothing) {
  writeFile(on("/source/file"), "content");
  EXPECT_EQ(run("/bin/cp", {"-R", "/source", "/target"}).first, launchSucceeded);
  EXPECT_EQ(readFile(on("/target/file")), "content");
  ::mkfifo(on("/source/pipe").c_str(), 0600);
  run("/bin/cp", {"-R", "/source", "/second"});
  EXPECT_FALSE(fs::exists(on("/second")));
}

TEST_F(ToolsTest, TakeOffTheQuarantineMarkEverywhere) {
  makeBundle(on("/X.app"), {});
  writeFile(on("/outside"), "");
  fs::create_symlink("../../outside", on("/X.app/Contents/link"));
  fs::create_directory_symlink("..", on("/X.app/Contents/loop"));
  const auto mark = [&](const std::string& path) {
    return ::setxattr(on(path).c_str(), "user.com.apple.quarantine", "0083", 4, 0) == 0;
  };
  if (!mark("/outside")) GTEST_SKIP() << "the temporary folder's file system has no extended attributes";
  for (const char* const path : {"/X.app", "/X.app/Contents", "/X.app/Contents/Info.plist"}) ASSERT_TRUE(mark(path));
  ASSERT_EQ(::setxattr(on("/X.app").c_str(), "user.other", "x", 1, 0), 0);
  run("/usr/bin/xattr", {"-dr", "com.apple.quarantine", "/X.app"});
  for (const char* const path : {"/X.app", "/X.app/Contents", "/X.app/Contents/Info.plist"}) {
    EXPECT_LT(::getxattr(on(path).c_str(), "user.com.apple.quarantine", nullptr, 0), 0) << path;
  }
  EXPECT_EQ(::getxattr(on("/X.app").c_str(), "user.other", nullptr, 0), 1);
  EXPECT_EQ(::getxattr(on("/outside").c_str(), "user.com.apple.quarantine", nullptr, 0), 4) << "reached through a link";
}

TEST_F(ToolsTest, GiveAFolderTheModeAndNothingElse) {
  fs::create_directories(on("/folder/inner"));
  ::chmod(on("/folder").c_str(), 02700);
  ASSERT_EQ(modeOf(on("/folder")), "2700");
  run("/bin/chmod", {"-R", "0775", "/folder"});
  EXPECT_EQ(modeOf(on("/folder")), "775");
  EXPECT_EQ(modeOf(on("/folder/inner")), "775");
}

TEST_F(ToolsTest, NeedRoot) { EXPECT_EQ(real_.createAuthorization()->obtain(2), ::geteuid() == 0); }

}  // namespace
