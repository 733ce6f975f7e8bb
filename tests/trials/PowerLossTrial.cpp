// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "trials/Trial.h"

namespace {

bool shell(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

/// The volume is an ext4 image behind a loop device. The image lies on a file system that can clone a file in an
/// instant: a clone holds what the medium would hold when the power fails.
class PowerLossTrial : public Trial {
 protected:
  void SetUp() override {
    Trial::SetUp();
    if (IsSkipped()) return;
    if (!isIsolated()) GTEST_SKIP() << "needs a namespace of its own, see tests/isolated";
    fs::create_directories(store_);
    fs::create_directories(disk_);
    const std::string store = "'" + (folder_.path() / "store.img").string() + "'";
    if (!shell("truncate -s 600M " + store + " && mkfs.xfs -q -m reflink=1 " + store + " && mount -o loop " + store +
               " '" + store_.string() + "'")) {
      GTEST_SKIP() << "needs mkfs.xfs (xfsprogs) and loop devices";
    }
    ASSERT_TRUE(shell("truncate -s 64M '" + image("base") + "'"));
    ASSERT_TRUE(shell("mkfs.ext4 -q '" + image("base") + "'"));
    mount("base");
    reset(disk_);
    unmount();
  }
  void TearDown() override {
    for (const fs::path& folder : {disk_, store_}) ::umount2(folder.c_str(), MNT_DETACH);
  }

  [[nodiscard]] std::string image(const std::string& name) const { return store_ / (name + ".img"); }
  void mount(const std::string& name) const {
    ASSERT_TRUE(shell("mount -o loop '" + image(name) + "' '" + disk_.string() + "'"));
  }
  void unmount() const { ASSERT_EQ(::umount(disk_.c_str()), 0); }
  void clone(const std::string& from, const std::string& to) const {
    fs::remove(image(to));
    const FileDescriptor source(::open(image(from).c_str(), O_RDONLY | O_CLOEXEC));
    const FileDescriptor target(::open(image(to).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    ASSERT_EQ(::ioctl(target.get(), FICLONE, source.get()), 0);
  }

  const fs::path store_ = folder_.path() / "store";
  const fs::path disk_ = folder_.path() / "disk";
};

TEST_F(PowerLossTrial, LeavesEveryItemWholeOnTheMedium) {
  const int count = rounds(20);
  double whole = 300;
  int broken = 0;
  int mixed = 0;
  int lostAfterSuccess = 0;
  int successes = 0;
  for (int i = 0; i < count; ++i) {
    clone("base", "now");
    mount("now");
    const auto begin = std::chrono::steady_clock::now();
    const Process process = start(Who::root, disk_, {});
    // Every third time right after the install says that it is done.
    const bool isAtEnd = i % 3 == 0;
    Run result;
    if (isAtEnd) {
      result = finish(process);
      whole = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
    } else {
      sleep(random() * whole);
    }
    clone("now", "then");
    if (!isAtEnd) {
      ::kill(process.id, SIGKILL);
      static_cast<void>(finish(process));
    }
    unmount();
    mount("then");  // replays the journal
    const State state = look(disk_);
    broken += state.broken > 0 ? 1 : 0;
    mixed += state.isMixed() ? 1 : 0;
    if (isAtEnd) {
      ++successes;
      EXPECT_TRUE(claimsSuccess(result)) << result.output;
      const bool hasLog = fs::file_size(disk_ / "Library/Application Support/Corvane/Dunmore 3 Installer.log") > 0;
      lostAfterSuccess += state.fresh == bundleCount && hasLog ? 0 : 1;
    }
    unmount();
  }
  say("power loss: " + std::to_string(count) + " moments, " + std::to_string(broken) +
      " with a lost or incomplete item, " + std::to_string(mixed) +
      " partly old and partly new; right after success: " + std::to_string(successes) + " moments, " +
      std::to_string(lostAfterSuccess) + " with anything missing");
  EXPECT_EQ(broken, 0);
  EXPECT_EQ(lostAfterSuccess, 0);
}

class FullDiskTrial : public Trial {};

TEST_F(FullDiskTrial, KeepsTheOldProductOrPutsTheNewInPlace) {
  if (!isIsolated()) GTEST_SKIP() << "needs a namespace of its own, see tests/isolated";
  const int count = rounds(24);
  int complete = 0;
  int unchanged = 0;
  int partial = 0;
  const fs::path disk = folder_.path() / "disk";
  fs::create_directories(disk);
  for (int i = 0; i < count; ++i) {
    ASSERT_EQ(::mount("none", disk.c_str(), "tmpfs", 0, "mode=755,size=20m"), 0);
    reset(disk);
    // A bundle takes about 300 KB, and the product 3.5 MB.
    const auto kilobytes = static_cast<std::uintmax_t>(random() * random() * 5'000);
    writeFile(disk / "filler", std::string(fs::space(disk).available - kilobytes * 1024, 'f'));
    const Run result = finish(start(i % 2 == 0 ? Who::root : Who::user, disk, {}));
    waitForHelper(disk);
    const State state = look(disk);
    EXPECT_EQ(state.broken, 0) << kilobytes << result.output;
    EXPECT_EQ(leftovers(disk), 0) << kilobytes << result.output;
    EXPECT_EQ(claimsSuccess(result), state.fresh == bundleCount) << kilobytes << result.output;
    complete += state.fresh == bundleCount ? 1 : 0;
    unchanged += state.old == bundleCount ? 1 : 0;
    partial += state.isMixed() ? 1 : 0;
    ASSERT_EQ(::umount(disk.c_str()), 0);
  }
  say("full disk: " + std::to_string(count) + " levels, " + std::to_string(complete) + " upgraded, " +
      std::to_string(unchanged) + " left as they were, " + std::to_string(partial) +
      " reported as incomplete; no item lost or incomplete");
}

}  // namespace
