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

#include "platform/files/StagedCopy.h"
#include "support/TestMachine.h"

namespace {

class CopyTest : public MachineTest {
 protected:
  /// A bundle as payloads have them: many files, nested folders, links, a file that can be run.
  void makeSource(int files) {
    const fs::path contents = on("/Source.app/Contents");
    for (int i = 0; i < files; ++i) {
      writeFile(contents / "Resources" / std::to_string(i % 7) / std::to_string(i), "content " + std::to_string(i));
    }
    writeFile(contents / "MacOS/program", std::string(100'000, 'p'));
    ::chmod((contents / "MacOS/program").c_str(), 0755);
    writeFile(contents / ".hidden", "hidden");
    for (const char* const target : {"MacOS/program", "/etc/passwd", "nowhere", ".."}) {
      fs::create_symlink(target, contents / ("to " + fs::path(target).filename().string()));
    }
    fs::create_directories(contents / "empty");
    ::chmod((contents / "empty").c_str(), 0555);
  }

  /// Kinds, permissions, times and contents of all that is in the folder.
  [[nodiscard]] std::string describe(const std::string& folder) const {
    const std::string listing = on("").parent_path() / "listing";
    const std::string command = "cd '" + on(folder).string() +
                                "' && (find . -printf '%p %y %m %T@ %l\\n'; find . -type f -exec cksum {} +) | sort >" +
                                listing;
    EXPECT_EQ(std::system(command.c_str()), 0);
    return readFile(listing);
  }

  /// Copies into the folder, in both ways, and wants it as it was.
  void expectNothingBut(std::errc reason, const std::string& folder) {
    writeFile(on(folder + "/Target.app/old"), std::string(150'000, 'o'));
    for (const Status& status : {files_.copyItem("/Source.app", folder + "/Copy.app"),
                                 files_.replaceItem("/Source.app", folder + "/Target.app")}) {
      EXPECT_TRUE(!status && status.error().is(reason));
    }
    EXPECT_EQ(readFile(on(folder + "/Target.app/old")).size(), 150'000U);
    EXPECT_EQ(namesIn(on(folder)), "Target.app");
  }
};

TEST_F(CopyTest, KeepsEverythingOfABundle) {
  makeSource(200);
  ASSERT_TRUE(files_.copyItem("/Source.app", "/Copy.app"));
  EXPECT_EQ(describe("/Copy.app"), describe("/Source.app"));

  constexpr off_t far = off_t{3} << 30U;
  writeFile(on("/sparse"), "start");
  fs::resize_file(on("/sparse"), far);
  std::ofstream(on("/sparse"), std::ios::app) << "end";
  const bool hasMark = ::setxattr(on("/sparse").c_str(), "user.com.apple.quarantine", "0083;x", 6, 0) == 0;
  ASSERT_TRUE(files_.copyItem("/sparse", "/copy"));
  struct stat status {};
  ::stat(on("/copy").c_str(), &status);
  EXPECT_LT(status.st_blocks * 512, 1 << 20U) << "the holes were filled";
  std::string end(3, '\0');
  std::ifstream(on("/copy")).seekg(far).read(end.data(), 3);
  EXPECT_EQ(end, "end");
  EXPECT_TRUE(!hasMark || ::getxattr(on("/copy").c_str(), "user.com.apple.quarantine", nullptr, 0) == 6);
}

TEST_F(CopyTest, GoesToAFreeNameOrReplacesAnItemOfAnyKind) {
  writeFile(on("/folder/deep/old"), "old");
  writeFile(on("/file"), "file");
  writeFile(on("/other/new"), "new");
  fs::create_symlink("/nowhere", on("/dangling"));
  for (const char* const taken : {"/file", "/dangling"}) {
    EXPECT_TRUE(files_.copyItem("/other", taken).error().is(std::errc::file_exists));
  }
  EXPECT_TRUE(files_.replaceItem("/file", "/folder") && files_.replaceItem("/other", "/file"));
  EXPECT_EQ(readFile(on("/folder")) + readFile(on("/file/new")), "filenew");
  EXPECT_TRUE(files_.replaceItem("/folder", "/dangling"));
  EXPECT_EQ(readFile(on("/dangling")), "file");
  EXPECT_EQ(namesIn(on("/")), "Applications Library Users dangling file folder other");
}

TEST_F(CopyTest, LeavesTheOldItemAloneWhenItFails) {
  makeSource(20);
  const fs::path pipe = on("/Source.app/Contents/Resources/3/pipe");
  ::mkfifo(pipe.c_str(), 0600);
  expectNothingBut(std::errc::not_supported, "/folder");
  fs::remove(pipe);
  fs::create_directories(on("/small"));
  if (::mount("none", on("/small").c_str(), "tmpfs", 0, "size=240k") != 0) {
    GTEST_SKIP() << "needs the right to mount a small file system";
  }
  expectNothingBut(std::errc::no_space_on_device, "/small");
  ::umount2(on("/small").c_str(), MNT_DETACH);
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
  std::vector<PlannedCopy> copies;
  for (int i = 0; i < 12; ++i) {
    copies.push_back({i == 5 ? "/none" : "/Source.app", "/Targets/" + std::to_string(i) + ".app"});
  }
  const auto isCopied = [&](std::size_t i) -> bool {
    return static_cast<bool>(files_.copyItem(copies[i].source, copies[i].target));
  };
  {
    const auto plan = files_.planCopies(copies);
    EXPECT_FALSE(isCopied(0)) << "the folder is not there yet";
    fs::create_directories(on("/Targets"));
    writeFile(on(copies[3].target), "in the way");
    for (std::size_t i = 1; i < 9; ++i) EXPECT_EQ(isCopied(i), i != 3 && i != 5) << i;
    EXPECT_TRUE(files_.replaceItem("/Source.app", copies[3].target)) << "asked for a second time";
    // Exchanged while a copy may stand beside its place already: it must go where the path leads now.
    fs::rename(on("/Targets"), on("/Elsewhere"));
    fs::create_directories(on("/Targets"));
    EXPECT_TRUE(isCopied(9));
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
    return replaced.error().is(std::errc::permission_denied);
  };
  EXPECT_TRUE(isDenied("/Source.app/Contents/MacOS", "/Open/Target.app"));
  EXPECT_TRUE(isDenied("/Source.app/Contents/MacOS", "/Sticky/old"));
  EXPECT_FALSE(isDenied("/Source.app/Contents/.hidden", "/Open/old")) << "what cannot be read is the new one";
  EXPECT_EQ(namesIn(on("/Open")) + ", " + namesIn(on("/Open/Target.app")), "Target.app old, old");
}

}  // namespace
