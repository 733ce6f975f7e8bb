#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <thread>

#include "platform/posix/StagedCopy.h"
#include "support/TestMachine.h"

namespace {

class CopyTest : public testing::Test {
 protected:
  [[nodiscard]] fs::path on(const std::string& path) const { return machine_.onVolume(path); }

  /// A bundle as payloads have them: many files, nested folders, links, a file that can be run, one with
  /// holes.
  void makeSource(int files = 200) {
    for (int i = 0; i < files; ++i) {
      writeFile(on("/Source.app/Contents/Resources/folder " + std::to_string(i % 7) + "/" + std::to_string(i)),
                "content " + std::to_string(i));
    }
    writeFile(on("/Source.app/Contents/MacOS/program"), std::string(100'000, 'p'));
    ::chmod(on("/Source.app/Contents/MacOS/program").c_str(), 0755);
    fs::create_symlink("MacOS/program", on("/Source.app/Contents/valid"));
    fs::create_symlink("/etc/passwd", on("/Source.app/Contents/outside"));
    fs::create_symlink("nowhere", on("/Source.app/Contents/dangling"));
    fs::create_directory_symlink("..", on("/Source.app/Contents/loop"));
    writeFile(on("/Source.app/Contents/.hidden"), "hidden");
    fs::create_directories(on("/Source.app/Contents/empty"));
    ::chmod(on("/Source.app/Contents/empty").c_str(), 0555);
  }

  [[nodiscard]] static std::string describe(const fs::path& root) {
    std::map<std::string, std::string> items;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
      struct stat status {};
      ::lstat(entry.path().c_str(), &status);
      std::string item = modeOf(entry.path()) + " " + std::to_string(status.st_mtim.tv_sec) + "." +
                         std::to_string(status.st_mtim.tv_nsec) + " ";
      if (entry.is_symlink()) {
        item += "-> " + fs::read_symlink(entry.path()).string();
      } else if (entry.is_regular_file()) {
        item += readFile(entry.path());
      }
      items[entry.path().lexically_relative(root)] = item;
    }
    std::string text;
    for (const auto& [path, item] : items) text.append(path).append(": ").append(item).append("\n");
    return text;
  }

  TestMachine machine_;
  FileSystem& files_ = machine_.files;
};

TEST_F(CopyTest, KeepsEverythingOfABundle) {
  makeSource();
  const timespec past[2] = {{1'000'000'000, 0}, {1'000'000'000, 123'456'789}};
  for (const char* const path :
       {"/Source.app/Contents/MacOS/program", "/Source.app/Contents/Resources", "/Source.app"}) {
    ::utimensat(AT_FDCWD, on(path).c_str(), past, 0);
  }
  ASSERT_TRUE(files_.copyItem("/Source.app", "/Copy.app"));
  EXPECT_EQ(describe(on("/Copy.app")), describe(on("/Source.app")));
  EXPECT_EQ(fs::last_write_time(on("/Copy.app")), fs::last_write_time(on("/Source.app")));
  EXPECT_EQ(namesIn(on("/")), "Applications Copy.app Library Source.app Users");
}

TEST_F(CopyTest, KeepsHolesAndAttributes) {
  {
    const int file = ::open(on("/sparse").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    constexpr off_t far = off_t{3} << 30U;
    ASSERT_EQ(::pwrite(file, "start", 5, 0), 5);
    ASSERT_EQ(::pwrite(file, "end", 3, far), 3);
    ASSERT_EQ(::ftruncate(file, far + 1'000'000), 0);
    ::close(file);
  }
  if (::setxattr(on("/sparse").c_str(), "user.com.apple.quarantine", "0083;x", 6, 0) != 0) {
    GTEST_SKIP() << "the temporary folder's file system has no extended attributes";
  }
  ASSERT_TRUE(files_.copyItem("/sparse", "/copy"));
  struct stat status {};
  ::stat(on("/copy").c_str(), &status);
  EXPECT_EQ(status.st_size, (off_t{3} << 30U) + 1'000'000);
  EXPECT_LT(status.st_blocks * 512, 1 << 20U) << "the holes were filled";
  std::string mark(6, '\0');
  EXPECT_EQ(::getxattr(on("/copy").c_str(), "user.com.apple.quarantine", mark.data(), mark.size()), 6);
  EXPECT_EQ(mark, "0083;x");
  std::string end(3, '\0');
  const int file = ::open(on("/copy").c_str(), O_RDONLY | O_CLOEXEC);
  EXPECT_EQ(::pread(file, end.data(), end.size(), off_t{3} << 30U), 3);
  EXPECT_EQ(end, "end");
  ::close(file);
}

TEST_F(CopyTest, LeavesNothingOfACopyThatFails) {
  makeSource();
  writeFile(on("/Target.app/old"), "old");
  ::mkfifo(on("/Source.app/Contents/Resources/folder 3/pipe").c_str(), 0600);
  for (const Status& status :
       {files_.copyItem("/Source.app", "/Copy.app"), files_.replaceItem("/Source.app", "/Target.app")}) {
    ASSERT_FALSE(status);
    EXPECT_TRUE(status.error().is(std::errc::not_supported)) << status.error().description();
  }
  EXPECT_EQ(readFile(on("/Target.app/old")), "old");
  EXPECT_EQ(namesIn(on("/")), "Applications Library Source.app Target.app Users");
}

/// Runs the action in a process of its own, which may be limited or killed.
pid_t inChild(const std::function<int()>& action) {
  const pid_t child = ::fork();
  if (child == 0) std::_Exit(action());
  return child;
}

TEST_F(CopyTest, StopsAtTheLargestFileThatMayBeWritten) {
  makeSource();
  writeFile(on("/Target.app/old"), "old");
  const pid_t child = inChild([&] {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{50'000, 50'000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const Status copied = files_.replaceItem("/Source.app", "/Target.app");
    return !copied && copied.error().is(std::errc::file_too_large) ? 0 : 1;
  });
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(namesIn(on("/Target.app")), "old");
  EXPECT_EQ(namesIn(on("/")), "Applications Library Source.app Target.app Users");
}

TEST_F(CopyTest, LosesNothingOnAFullDisk) {
  const fs::path small = on("/small");
  fs::create_directories(small);
  if (::mount("none", small.c_str(), "tmpfs", 0, "size=400k") != 0) {
    GTEST_SKIP() << "needs the right to mount a small file system";
  }
  makeSource(20);
  writeFile(on("/small/Target.app/old"), std::string(150'000, 'o'));
  for (const auto& [source, target] :
       {PlannedCopy{"/Source.app", "/small/One.app"}, {"/Source.app", "/small/Target.app"}}) {
    const Status copied = fs::exists(on(target)) ? files_.replaceItem(source, target) : files_.copyItem(source, target);
    ASSERT_TRUE(copied || copied.error().is(std::errc::no_space_on_device)) << copied.error().description();
  }
  EXPECT_EQ(readFile(on("/small/Target.app/old")).size(), 150'000U);
  EXPECT_EQ(namesIn(small), "One.app Target.app");
  ::umount2(small.c_str(), MNT_DETACH);
}

TEST_F(CopyTest, LeavesTheOldOrTheNewWhenItIsKilled) {
  makeSource(2000);
  const std::string fresh = describe(on("/Source.app"));
  writeFile(on("/Target.app/old"), "old");
  bool wasCutShort = false;
  for (int delay = 0; delay < 60; delay += 3) {
    const pid_t child = inChild([&] { return files_.replaceItem("/Source.app", "/Target.app") ? 0 : 1; });
    std::this_thread::sleep_for(std::chrono::milliseconds(delay));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const bool isOld = namesIn(on("/Target.app")) == "old";
    ASSERT_TRUE(isOld || describe(on("/Target.app")) == fresh) << "after " << delay << " ms";
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
  EXPECT_EQ(describe(on("/Elsewhere/8.app")), describe(on("/Source.app")));
}

TEST_F(CopyTest, NeedsTheRightToRemoveTheOldItem) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become somebody without rights";
  makeSource(1);
  writeFile(on("/Open/Target.app/Contents/old"), "old");
  ::chmod(on("/Open").c_str(), 0777);
  ::chmod(machine_.folder().c_str(), 0755);
  const pid_t child = inChild([&] {
    if (::setgid(65534) != 0 || ::setuid(65534) != 0) return 2;
    const Status replaced = files_.replaceItem("/Source.app", "/Open/Target.app");
    return !replaced && replaced.error().is(std::errc::permission_denied) ? 0 : 1;
  });
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(readFile(on("/Open/Target.app/Contents/old")), "old");
  EXPECT_EQ(namesIn(on("/Open")), "Target.app");
}

}  // namespace
