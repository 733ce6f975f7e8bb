#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "platform/posix/StagedCopy.h"
#include "support/TestMachine.h"

namespace {

class CopyTest : public MachineTest {
 protected:
  /// A bundle as payloads have them: many files, nested folders, links, a file that can be run.
  void makeSource(int files = 200) {
    const fs::path contents = on("/Source.app/Contents");
    for (int i = 0; i < files; ++i) {
      writeFile(contents / "Resources" / std::to_string(i % 7) / std::to_string(i), "content " + std::to_string(i));
    }
    writeFile(contents / "MacOS/program", std::string(100'000, 'p'));
    ::chmod((contents / "MacOS/program").c_str(), 0755);
    writeFile(contents / ".hidden", "hidden");
    fs::create_symlink("MacOS/program", contents / "valid");
    fs::create_symlink("/etc/passwd", contents / "outside");
    fs::create_symlink("nowhere", contents / "dangling");
    fs::create_directory_symlink("..", contents / "loop");
    fs::create_directories(contents / "empty");
    ::chmod((contents / "empty").c_str(), 0555);
  }

  /// Kinds, permissions, times and contents of all that is in the folder.
  [[nodiscard]] std::string describe(const std::string& folder) const {
    const std::string listing = on("").parent_path() / "listing";
    const std::string command = "cd '" + on(folder).string() +
                                "' && (find . -printf '%p %y %m %T@ %l\\n' | sort; find . -type f -print0 | sort -z | "
                                "xargs -0 cksum) >" +
                                listing;
    EXPECT_EQ(std::system(command.c_str()), 0);
    return readFile(listing);
  }
};

TEST_F(CopyTest, KeepsEverythingOfABundle) {
  makeSource();
  const timespec past[2] = {{1'000'000'000, 0}, {1'000'000'000, 123'456'789}};
  for (const char* const path : {"/Source.app/Contents/MacOS/program", "/Source.app/Contents", "/Source.app"}) {
    ::utimensat(AT_FDCWD, on(path).c_str(), past, 0);
  }
  ASSERT_TRUE(files_.copyItem("/Source.app", "/Copy.app"));
  EXPECT_EQ(describe("/Copy.app"), describe("/Source.app"));
  EXPECT_EQ(namesIn(on("/")), "Applications Copy.app Library Source.app Users");
}

TEST_F(CopyTest, KeepsHolesAndAttributes) {
  constexpr off_t far = off_t{3} << 30U;
  std::ofstream(on("/sparse")) << "start";
  fs::resize_file(on("/sparse"), far);
  std::ofstream(on("/sparse"), std::ios::app) << "end";
  fs::resize_file(on("/sparse"), far + 1'000'000);
  if (::setxattr(on("/sparse").c_str(), "user.com.apple.quarantine", "0083;x", 6, 0) != 0) {
    GTEST_SKIP() << "the temporary folder's file system has no extended attributes";
  }
  ASSERT_TRUE(files_.copyItem("/sparse", "/copy"));
  struct stat status {};
  ::stat(on("/copy").c_str(), &status);
  EXPECT_EQ(status.st_size, far + 1'000'000);
  EXPECT_LT(status.st_blocks * 512, 1 << 20U) << "the holes were filled";
  std::string mark(6, '\0');
  EXPECT_EQ(::getxattr(on("/copy").c_str(), "user.com.apple.quarantine", mark.data(), mark.size()), 6);
  std::string end(3, '\0');
  std::ifstream(on("/copy")).seekg(far).read(end.data(), 3);
  EXPECT_EQ(mark + end, "0083;xend");
}

TEST_F(CopyTest, LeavesNothingOfACopyThatFails) {
  makeSource();
  writeFile(on("/Target.app/old"), "old");
  ::mkfifo(on("/Source.app/Contents/Resources/3/pipe").c_str(), 0600);
  for (const Status& status :
       {files_.copyItem("/Source.app", "/Copy.app"), files_.replaceItem("/Source.app", "/Target.app")}) {
    ASSERT_FALSE(status);
    EXPECT_TRUE(status.error().is(std::errc::not_supported)) << status.error().description();
  }
  EXPECT_EQ(readFile(on("/Target.app/old")), "old");
  EXPECT_EQ(namesIn(on("/")), "Applications Library Source.app Target.app Users");
}

TEST_F(CopyTest, LosesNothingOnAFullDisk) {
  const fs::path small = on("/small");
  fs::create_directories(small);
  if (::mount("none", small.c_str(), "tmpfs", 0, "size=240k") != 0) {
    GTEST_SKIP() << "needs the right to mount a small file system";
  }
  makeSource(20);
  writeFile(small / "Target.app/old", std::string(150'000, 'o'));
  for (const Status& status :
       {files_.copyItem("/Source.app", "/small/One.app"), files_.replaceItem("/Source.app", "/small/Target.app")}) {
    EXPECT_TRUE(!status && status.error().is(std::errc::no_space_on_device));
  }
  EXPECT_EQ(readFile(small / "Target.app/old").size(), 150'000U);
  EXPECT_EQ(namesIn(small), "Target.app");
  ::umount2(small.c_str(), MNT_DETACH);
}

TEST_F(CopyTest, LeavesTheOldOrTheNewWhenItIsKilled) {
  makeSource(2000);
  const std::string fresh = describe("/Source.app");
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(files_.copyItem("/Source.app", "/Target.app"));
  const auto duration = std::chrono::steady_clock::now() - start;
  writeFile(on("/Target.app/old"), "old");
  const std::string old = describe("/Target.app");
  bool wasCutShort = false;
  for (int tenths = 0; tenths <= 20; ++tenths) {
    const pid_t child = ::fork();
    if (child == 0) std::_Exit(files_.replaceItem("/Source.app", "/Target.app") ? 0 : 1);
    std::this_thread::sleep_for(duration * tenths / 10);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const std::string found = describe("/Target.app");
    ASSERT_TRUE(found == fresh || found == old) << "after " << tenths << " tenths of what a copy takes";
    wasCutShort = wasCutShort || namesIn(on("/")).find(".installing-") != std::string::npos;
  }
  EXPECT_TRUE(wasCutShort) << "no process was killed while it copied";
  ASSERT_TRUE(files_.replaceItem("/Source.app", "/Target.app"));
  EXPECT_EQ(namesIn(on("/")), "Applications Library Source.app Target.app Users") << "leftovers are cleaned up";
}

TEST_F(CopyTest, KeepsOutOfTheWayOfAnotherInstaller) {
  makeSource(1);
  const fs::path theirs = on("/" + stagedName("Target.app", 0));
  writeFile(theirs / "theirs", "");
  const int lock = ::open(theirs.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  ASSERT_EQ(::flock(lock, LOCK_EX), 0);
  EXPECT_TRUE(files_.copyItem("/Source.app", "/Target.app"));
  EXPECT_TRUE(fs::exists(theirs / "theirs"));
  ::close(lock);
  EXPECT_TRUE(files_.replaceItem("/Source.app", "/Target.app"));
  EXPECT_FALSE(fs::exists(theirs)) << "left over, now that nobody holds it";
}

TEST_F(CopyTest, DoesTheSameWithAPlanAndWithout) {
  makeSource(30);
  const auto target = [](int i) { return "/Targets/" + std::to_string(i) + ".app"; };
  std::vector<PlannedCopy> copies;
  for (int i = 0; i < 12; ++i) copies.push_back({i == 5 ? "/none" : "/Source.app", target(i)});
  {
    const auto plan = files_.planCopies(copies);
    EXPECT_FALSE(files_.copyItem("/Source.app", target(0))) << "the folder is not there yet";
    fs::create_directories(on("/Targets"));
    writeFile(on(target(3)), "in the way");
    for (int i = 1; i < 9; ++i) {
      const Status copied = files_.copyItem(copies[static_cast<std::size_t>(i)].source, target(i));
      EXPECT_EQ(static_cast<bool>(copied), i != 3 && i != 5) << i;
    }
    EXPECT_TRUE(files_.replaceItem("/Source.app", target(3))) << "asked for a second time";
    // Exchanged while a copy may stand beside its place already: it must go where the path leads now.
    fs::rename(on("/Targets"), on("/Elsewhere"));
    fs::create_directories(on("/Targets"));
    EXPECT_TRUE(files_.copyItem("/Source.app", target(9)));
  }
  EXPECT_EQ(namesIn(on("/Targets")), "9.app");
  EXPECT_EQ(namesIn(on("/Elsewhere")), "1.app 2.app 3.app 4.app 6.app 7.app 8.app") << "what was not asked for is gone";
  EXPECT_EQ(describe("/Elsewhere/8.app"), describe("/Source.app"));
}

TEST_F(CopyTest, TellsALackOfRightsOnTheOldItemFromAnyOther) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become somebody without rights";
  makeSource(1);
  for (const char* const old : {"/Open/Target.app/old", "/Open/old", "/Sticky/old"}) writeFile(on(old), "old");
  ::chmod(on("").parent_path().c_str(), 0755);
  ::chmod(on("/Open").c_str(), 0777);
  ::chmod(on("/Sticky").c_str(), 01777);
  ::chmod(on("/Source.app/Contents/.hidden").c_str(), 0600);
  const auto isDenied = [&](const char* source, const char* target) {
    EXPECT_EQ(::seteuid(65534), 0);
    const Status replaced = files_.replaceItem(source, target);
    EXPECT_EQ(::seteuid(0), 0);
    EXPECT_FALSE(replaced) << target;
    return replaced.error().is(std::errc::permission_denied);
  };
  EXPECT_TRUE(isDenied("/Source.app/Contents/MacOS", "/Open/Target.app"));
  EXPECT_TRUE(isDenied("/Source.app/Contents/MacOS", "/Sticky/old"));
  EXPECT_FALSE(isDenied("/Source.app/Contents/.hidden", "/Open/old")) << "what cannot be read is the new one";
  EXPECT_EQ(namesIn(on("/Open")) + ", " + namesIn(on("/Open/Target.app")), "Target.app old, old");
}

}  // namespace
