#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "foundation/Text.h"
#include "platform/posix/ChildProcess.h"
#include "support/TestMachine.h"

namespace {

class ToolsTest : public MachineTest {
 protected:
  /// The command's arguments with the volume's folder cut off, joined by "|".
  [[nodiscard]] std::string resolved(const char* tool, const std::vector<std::string>& arguments) const {
    const auto command = tools_.resolve(tool, arguments);
    if (!command) return "(none)";
    std::string text = fs::path(command->executable).filename();
    const std::string folder = "/proc/self/fd/" + std::to_string(command->folder.get());
    for (std::string argument : command->arguments) {
      if (argument.starts_with("./")) argument.replace(0, 1, fs::read_symlink(folder).string());
      text += "|" + replacingOccurrences(argument, on("").string(), "VOLUME");
    }
    return text;
  }

  /// Runs a tool as the install does; its status and what it wrote.
  std::pair<LaunchStatus, std::string> run(const char* tool, const std::vector<std::string>& arguments) {
    const auto authorization = platform_.authorizations.createAuthorization();
    std::unique_ptr<CommunicationsPipe> pipe;
    const LaunchStatus status = authorization->executeWithPrivileges(tool, arguments, pipe);
    authorization->waitForAnyChild();
    std::string output(1000, '\0');
    output.resize(pipe != nullptr ? pipe->read(output.data(), output.size()) : 0);
    return {status, output};
  }

  Volume volume_{on("").string(), machine_.inBundle("").parent_path().parent_path()};
  PosixUser user_{machine_.account(), {"en"}};
  SystemTools tools_{volume_, user_, machine_.inBundle("Helpers").string(), "/registered"};
};

TEST_F(ToolsTest, StandInForAMacs) {
  fs::create_directory_symlink("/Library", on("/link"));
  fs::create_directory_symlink("/nowhere", on("/dangling"));
  const std::string group = std::to_string(*groupNumber("admin"));
  const std::string own = machine_.inBundle("Resources").string();
  constexpr const char* lsregister =
      "/System/Library/Frameworks/CoreServices.framework/Versions/A/Frameworks/LaunchServices.framework/Versions/A/"
      "Support/lsregister";
  const std::tuple<const char*, std::vector<std::string>, std::string> cases[] = {
      {"/bin/rm", {"-fR", "/link/x"}, "rm|-fR|VOLUME/Library/x"},
      {"/bin/rm", {"-fR", "/link"}, "rm|-fR|VOLUME/link"},
      {"/bin/mkdir", {"-m775", "-p", "/link/x/y"}, "mkdir|-m775|-p|VOLUME/Library/x/y"},
      {"/usr/sbin/chown", {"-R", "root:admin", "/link/x"}, "chown|-R|+0:+" + group + "|VOLUME/Library/x"},
      {"/usr/sbin/chown", {"-R", "nobody at all:admin", "/x"}, "chown|-R|nobody at all:admin|VOLUME/x"},
      {"/bin/chmod", {"-R", "0775", "/x"}, "chmod|-R|00775|VOLUME/x"},
      {"/usr/sbin/chmod", {"-R", "0644", "/x"}, "chmod|-R|00644|VOLUME/x"},
      {"/bin/chmod", {"-R", "0775", "/link"}, "true"},  // a Mac's does not follow the link
      {"/usr/bin/touch", {"/x"}, "touch|VOLUME/x"},
      {"/usr/bin/xattr", {"-dr", "com.apple.quarantine", "/x"}, "xattr|-dr|com.apple.quarantine|VOLUME/x"},
      {"/bin/cp", {"-R", own, "/x"}, "cp|-R|" + own + "|VOLUME/x"},
      {lsregister, {"-apps"}, "true"},  // nothing is registered
      {"/bin/sh", {"-c", "true"}, "(none)"},
      {"rm", {"-fR", "/x"}, "(none)"},
      {"/bin/rm", {"-fR", own}, "(none)"},
      {"/bin/rm", {"-fR", "x"}, "(none)"},
      {"/bin/mkdir", {"-m775", "-p", "../x"}, "(none)"},
      {"/usr/sbin/chown", {"-R", "root:admin", "-x"}, "(none)"},
      {"/bin/cp", {"-R", "/x", own}, "(none)"},
      {"/bin/rm", {"-fR", std::string("/x\0y", 4)}, "(none)"},
      {"/bin/mkdir", {"-m775", "-p", "/dangling/x/y"}, "(none)"},  // a Mac's does not make what the link leads to
  };
  for (const auto& [tool, arguments, command] : cases) EXPECT_EQ(resolved(tool, arguments), command) << tool;
  fs::create_directories(on("/registered"));
  EXPECT_EQ(resolved(lsregister, {"-apps"}), "update-desktop-database|-q|VOLUME/registered");
}

TEST_F(ToolsTest, RunWithTheirOutputAndWithoutAShell) {
  EXPECT_EQ(run("/usr/bin/no-such-tool", {}).first, errAuthorizationToolExecuteFailure);
  EXPECT_EQ(run("/usr/bin/touch", {"/a $(touch b); 'c'"}), std::pair(launchSucceeded, std::string()));
  EXPECT_TRUE(fs::exists(on("/a $(touch b); 'c'")));
  EXPECT_EQ(run("/bin/rm", {"-fRv", "/a $(touch b); 'c'"}).second.substr(0, 8), "removed ");
  EXPECT_EQ(run("/usr/sbin/chown", {"-R", "root:admin", "/none/below"}).first, launchSucceeded)
      << "a tool that fails was launched all the same";
  // More than an argument may have.
  EXPECT_EQ(run("/usr/bin/touch", {std::string(3'000'000, 'x')}).first, errAuthorizationToolExecuteFailure);
}

TEST_F(ToolsTest, ChangeTheFolderThatWasLookedUp) {
  writeFile(on("/Folder/deep/x"), "");
  const fs::path outside = on("").parent_path() / "outside";
  writeFile(outside / "deep/x", "");
  const auto command = tools_.resolve("/bin/rm", {"-fR", "/Folder/deep/x"});
  fs::rename(on("/Folder"), on("/Moved"));
  fs::create_directory_symlink(outside, on("/Folder"));
  const auto process =
      spawn({.executable = command->executable, .arguments = command->arguments, .folder = command->folder.get()});
  ASSERT_TRUE(process && ::waitpid(*process, nullptr, 0) == *process);
  EXPECT_TRUE(fs::exists(outside / "deep/x"));
  EXPECT_FALSE(fs::exists(on("/Moved/deep/x")));
}

TEST_F(ToolsTest, CopyAllOrNothingAndGiveFoldersTheModeAlone) {
  fs::create_directories(on("/source/inner"));
  ::chmod(on("/source").c_str(), 02700);
  run("/bin/chmod", {"-R", "0775", "/source"});
  EXPECT_EQ(modeOf(on("/source")) + " " + modeOf(on("/source/inner")), "775 775");
  ::mkfifo(on("/source/pipe").c_str(), 0600);
  run("/bin/cp", {"-R", "/source", "/target"});
  EXPECT_FALSE(fs::exists(on("/target")));
}

TEST_F(ToolsTest, TakeOffTheQuarantineMarkEverywhere) {
  makeBundle(on("/X.app"), {});
  writeFile(on("/outside"), "");
  fs::create_symlink("../../outside", on("/X.app/Contents/link"));
  fs::create_directory_symlink("..", on("/X.app/Contents/loop"));
  constexpr const char* quarantine = "user.com.apple.quarantine";
  const auto mark = [&](const char* path, const char* name) {
    return ::setxattr(on(path).c_str(), name, "1", 1, 0) == 0;
  };
  const auto has = [&](const char* path, const char* name) {
    return ::getxattr(on(path).c_str(), name, nullptr, 0) == 1;
  };
  if (!mark("/outside", quarantine)) GTEST_SKIP() << "no extended attributes in the temporary folder's file system";
  ASSERT_TRUE(mark("/X.app", "user.other"));
  const auto marked = {"/X.app", "/X.app/Contents", "/X.app/Contents/Info.plist"};
  for (const char* const path : marked) ASSERT_TRUE(mark(path, quarantine));
  run("/usr/bin/xattr", {"-dr", "com.apple.quarantine", "/X.app"});
  for (const char* const path : marked) EXPECT_FALSE(has(path, quarantine)) << path;
  EXPECT_TRUE(has("/X.app", "user.other") && has("/outside", quarantine)) << "and no more than that";
}

}  // namespace
