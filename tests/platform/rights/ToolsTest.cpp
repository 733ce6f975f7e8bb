#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/processes/ChildProcess.h"
#include "support/HelperProcess.h"

namespace {

class ToolsTest : public MachineTest {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root: anybody else is asked for a password";
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
};

TEST_F(ToolsTest, DoWhatAMacsDo) {
  const auto done = std::pair(launchSucceeded, std::string());
  fs::create_directory_symlink("Library", on("/link"));
  fs::create_directory_symlink("/nowhere", on("/dangling"));
  EXPECT_EQ(run("/bin/mkdir", {"-m775", "-p", "/link/a b/$(touch c)"}), done);
  EXPECT_EQ(modeOf(on("/Library/a b/$(touch c)")), "775");
  const std::string state = modeOf(on("/Library")) + ownerOf(on("/Library"));
  EXPECT_EQ(run("/bin/chmod", {"-R", "0777", "/link"}), done);
  run("/usr/sbin/chown", {"-R", "nobody:admin", "/link"});
  EXPECT_EQ(modeOf(on("/Library")) + ownerOf(on("/Library")), state) << "the link itself is meant";
  EXPECT_EQ(run("/usr/bin/touch", {"/link/x"}), done);
  EXPECT_EQ(run("/bin/rm", {"-fRv", "/link"}).second.substr(0, 8), "removed ");
  EXPECT_EQ(namesIn(on("/Library")), "Application Support a b x");
  const std::string own = machine_.inBundle("Resources").string();

  const std::pair<const char*, std::vector<std::string>> bad[] = {
      {"/bin/sh", {"-c", "true"}},
      {"/bin/rm", {"-fR", own}},
      {"/bin/rm", {"-fR", "x"}},
      {"/usr/sbin/chown", {"-R", "root:admin", "-x"}},
      {"/bin/cp", {"-R", "/Library", own + "/new"}},
      {"/bin/rm", {"-fR", std::string("/Library\0y", 10)}},
      {"/bin/mkdir", {"-m775", "-p", "/dangling/x/y"}},
      {"/usr/bin/touch", {std::string(3'000'000, 'x')}},  // more than an argument may have
  };
  for (const auto& [tool, arguments] : bad) {
    EXPECT_EQ(run(tool, arguments).first, errAuthorizationToolExecuteFailure) << tool;
  }
  EXPECT_EQ(namesIn(own), "en.lproj");
  EXPECT_EQ(namesIn(on("/")), "Applications Library Users dangling");
  EXPECT_EQ(run("/usr/sbin/chown", {"-R", "root:admin", "/none/below"}).first, launchSucceeded)
      << "a tool that fails was launched all the same";
}

TEST_F(ToolsTest, FollowNoLinkOutOfTheVolumeWhereSomethingIsMissing) {
  const fs::path outside = on("").parent_path() / "outside";
  writeFile(outside / "etc/file", "");
  ::chmod((outside / "etc/file").c_str(), 0600);
  fs::create_directory_symlink(outside, on("/link"));  // leads nowhere on the volume
  for (const std::string path : {"/link/etc", "/link/etc/file"}) {
    run("/usr/sbin/chown", {"-R", "nobody:admin", path});
    run("/bin/chmod", {"-R", "0777", path});
    run("/usr/bin/touch", {path + "/new"});
    run("/bin/mkdir", {"-m775", "-p", path + "/new"});
    run("/bin/cp", {"-R", machine_.inBundle("Resources"), path + "/copy"});
    run("/bin/rm", {"-fR", path});
  }
  EXPECT_EQ(namesIn(outside / "etc"), "file");
  EXPECT_EQ(ownerOf(outside / "etc/file") + modeOf(outside / "etc/file"), ownerOf(outside) + "600");
}

TEST_F(ToolsTest, ChangeTheFolderThatWasLookedUp) {
  writeFile(on("/Folder/deep/x"), "");
  const fs::path outside = on("").parent_path() / "outside";
  writeFile(outside / "deep/x", "");
  const Volume volume(on("").string(), "");
  const PosixUser user(machine_.account(), {"en"});
  const auto command = SystemTools(volume, user, "", "").resolve("/bin/rm", {"-fR", "/Folder/deep/x"});
  fs::rename(on("/Folder"), on("/Moved"));
  fs::create_directory_symlink(outside, on("/Folder"));
  const auto process =
      spawn({.executable = command->executable, .arguments = command->arguments, .folder = command->folder.get()});
  ASSERT_TRUE(process && ::waitpid(*process, nullptr, 0) == *process);
  EXPECT_TRUE(fs::exists(outside / "deep/x"));
  EXPECT_FALSE(fs::exists(on("/Moved/deep/x")));
}

TEST_F(ToolsTest, ChangeWholeTreesAndNothingElse) {
  makeBundle(on("/X.app"), {});
  writeFile(on("/outside"), "");
  ::chmod(on("/outside").c_str(), 0600);
  ::chmod(on("/X.app").c_str(), 02700);
  fs::create_symlink("../../outside", on("/X.app/Contents/link"));
  const Paths items = {"/X.app", "/X.app/Contents", "/X.app/Contents/Info.plist"};
  constexpr const char* quarantine = "user.com.apple.quarantine";
  bool hasMarks = ::setxattr(on("/outside").c_str(), quarantine, "1", 1, 0) == 0;
  for (const std::string& path : items) hasMarks = hasMarks && ::setxattr(on(path).c_str(), quarantine, "1", 1, 0) == 0;
  const auto isMarked = [&](const std::string& path) {
    return ::getxattr(on(path).c_str(), quarantine, nullptr, 0) == 1;
  };
  run("/bin/chmod", {"-R", "0775", "/X.app"});
  run("/usr/bin/xattr", {"-dr", "com.apple.quarantine", "/X.app"});
  for (const std::string& path : items) {
    EXPECT_EQ(modeOf(on(path)), "775") << "a folder's set-group-id bit goes too";
    EXPECT_FALSE(isMarked(path)) << path;
  }
  EXPECT_EQ(modeOf(on("/outside")), "600");
  EXPECT_EQ(isMarked("/outside"), hasMarks);
}

}  // namespace
