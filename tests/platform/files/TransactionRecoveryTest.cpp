// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/files/TransactionTest.h"

namespace {

using TransactionRecoveryTest = TransactionTest;

TEST_P(TransactionRecoveryTest, KeepsTheOldItemOnAFullDisk) {
  if (!isIsolated()) GTEST_SKIP() << "needs tests/isolated: it mounts a file system";
  fs::create_directories(on("/Applications/small"));
  ASSERT_EQ(::mount("none", on("/Applications/small").c_str(), "tmpfs", 0, "size=240k,mode=755"), 0);
  writeFile(on("/Applications/small/X.app/old"), std::string(150'000, 'o'));
  EXPECT_EQ(install({{makeSource("X.app"), "/Applications/small/X.app"}}), Paths{"No space left on device"});
  EXPECT_EQ(readFile(on("/Applications/small/X.app/old")).size(), 150'000U);
  EXPECT_EQ(install({{makeFile("y"), "/Applications/small/y"}}), Paths{""}) << "the room is free again";
  EXPECT_EQ(namesIn(on("/Applications/small")), "X.app y");
  ::umount2(on("/Applications/small").c_str(), MNT_DETACH);
}

TEST_P(TransactionRecoveryTest, CleansUpAfterAKillOnEveryFileSystem) {
  if (!isIsolated()) GTEST_SKIP() << "needs tests/isolated: it mounts a file system";
  fs::create_directories(on("/Applications/other"));
  ASSERT_EQ(::mount("none", on("/Applications/other").c_str(), "tmpfs", 0, "mode=755"), 0);
  const std::string source = makeSource("X.app", 1000);
  const fs::path area = on("/Library/Application Support/.installing");
  const fs::path otherArea = on("/Applications/other/.installing");
  {
    auto transaction = begin();
    NotingObserver noting;
    EXPECT_TRUE(
        transaction->stage(Items{{source, "/Applications/X.app"}, {source, "/Applications/other/X.app"}}, noting));
    EXPECT_TRUE(fs::exists(area));
    EXPECT_TRUE(fs::exists(otherArea));
    // What a kill would leave.
    fs::rename(area, on("/Library/kept"));
    fs::rename(otherArea, on("/Applications/other/kept"));
  }
  fs::rename(on("/Library/kept"), area);
  fs::rename(on("/Applications/other/kept"), otherArea);
  EXPECT_EQ(install({{source, "/Applications/X.app"}}), Paths{""});
  EXPECT_EQ(namesIn(on("/Applications/other")), "");
  EXPECT_EQ(namesIn(on("/Library/Application Support")), "");
  ::umount2(on("/Applications/other").c_str(), MNT_DETACH);
}

TEST_P(TransactionRecoveryTest, NeedsTheLockOfTheVolume) {
  lock_.reset();
  const auto theirs = Volume(on("").string(), "").tryLock();
  ASSERT_TRUE(theirs);
  EXPECT_TRUE(volume_.tryLock().error().is(std::errc::device_or_resource_busy));
  if (GetParam() == Way::byHelper) {
    EXPECT_FALSE(HelperTransaction::begin(connection_, -1)) << "no lock";
    const FileDescriptor other(::open("/", O_RDONLY | O_CLOEXEC));
    EXPECT_FALSE(HelperTransaction::begin(connection_, other.get())) << "that of another volume";
    const FileDescriptor unlocked(::open(on("").c_str(), O_RDONLY | O_CLOEXEC));
    EXPECT_FALSE(HelperTransaction::begin(connection_, unlocked.get())) << "held by somebody else";
  }
}

/// Lets this process exchange no names any more, as on file systems that cannot.
void forbidExchange() {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[4])),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 2, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program{std::size(filter), filter};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    std::_Exit(2);
  }
}

/// The process of the test is the one that makes the changes.
using OwnTransactionTest = TransactionTest;

TEST_P(OwnTransactionTest, ExchangesInTwoStepsAndRestoresAfterAnInterruption) {
  const std::string source = makeSource("X.app");
  writeFile(on("/Applications/X.app/old"), "old");
  const pid_t child = ::fork();
  if (child == 0) {
    forbidExchange();
    std::_Exit(install({{source, "/Applications/X.app"}}) == Paths{""} ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(describe(on("/Applications/X.app")), describe(source));

  // As a process leaves it that is killed between the two steps.
  const fs::path area = on("/Library/Application Support/.installing");
  fs::create_directories(area / "0");
  fs::create_directories(area / "0.old");
  fs::create_symlink("/Applications", area / "0.to");
  fs::rename(on("/Applications/X.app"), area / "0.old/X.app");
  writeFile(area / "0.old/Taken.app", "old");
  writeFile(on("/Applications/Taken.app"), "new");
  EXPECT_EQ(install({}), Paths());
  EXPECT_EQ(describe(on("/Applications/X.app")), describe(source));
  EXPECT_EQ(readFile(on("/Applications/Taken.app")), "new");
  EXPECT_FALSE(fs::exists(area));

  // One that somebody else has put there says nothing that is believed.
  fs::create_directories(area / "0.old");
  fs::create_symlink("/private", area / "0.to");
  writeFile(area / "0.old/planted", "");
  setOwner(area, nobody, nobody);
  const auto refused = StagedTransaction::begin(volume_, elevation_, ownership_, CopyPool::Caller::helps);
  EXPECT_EQ(refused.error().reason(), "Operation not permitted");
  EXPECT_FALSE(fs::exists(on("/private/planted")));
}

INSTANTIATE_TEST_SUITE_P(BothWays, TransactionRecoveryTest, testing::Values(Way::byRoot, Way::byHelper),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(OneWay, OwnTransactionTest, testing::Values(Way::byRoot), testing::PrintToStringParamName());

}  // namespace
