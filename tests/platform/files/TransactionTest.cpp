// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <thread>

#include "platform/files/StagedTransaction.h"
#include "platform/rights/HelperTransaction.h"
#include "support/HelperProcess.h"

namespace {

/// An item whose texts live as long as itself.
struct Asked {
  std::string source;
  std::string target;
  bool losesQuarantine = false;
};
using Items = std::vector<Asked>;

std::vector<TransactionItem> viewsOf(const Items& items) {
  std::vector<TransactionItem> views;
  for (const Asked& item : items) views.push_back({item.source, item.target, item.losesQuarantine});
  return views;
}

using Numbers = std::vector<std::size_t>;

/// Notes what became of each item.
struct Noting : TransactionObserver {
  void willStage(std::size_t item) override { begun.push_back(item); }
  bool didStage(std::size_t item, const ItemResult& result) override {
    errors.push_back(result.status ? "" : result.status.error().reason());
    return item + 1 != stopAfter;
  }
  bool whileBusy(const CopiedAmount& amount) override {
    copied = amount;
    return true;
  }

  Numbers begun;
  Paths errors;
  CopiedAmount copied;
  std::size_t stopAfter = 0;
};

/// Both ways to carry out a transaction: by root in this process, and by the helper for a user.
class TransactionTest : public HelperTest, public testing::WithParamInterface<Way> {
 protected:
  void SetUp() override {
    HelperTest::SetUp();
    if (IsSkipped()) return;
    for (const char* const folder : {"/Applications", "/Library", "/Library/Application Support"}) {
      setOwner(on(folder), 0, 0);
    }
    lock_ = *volume_.tryLock();
  }

  [[nodiscard]] std::unique_ptr<Transaction> begin() {
    auto begun = GetParam() == Way::byRoot
                     ? StagedTransaction::begin(volume_, elevation_, ownership_, CopyPool::Caller::helps)
                     : HelperTransaction::begin(connection_, lock_->get());
    if (begun) return std::move(*begun);
    ADD_FAILURE() << begun.error().description();
    return nullptr;
  }

  /// A bundle as payloads have them: many files, nested folders, links, a file that can be run.
  std::string makeSource(const std::string& name, int files = 50) {
    const fs::path contents = machine_.payload(name) / "Contents";
    for (int i = 0; i < files; ++i) {
      writeFile(contents / "Resources" / std::to_string(i % 7) / std::to_string(i), "content " + std::to_string(i));
    }
    writeFile(contents / "MacOS/program", std::string(100'000, 'p'));
    ::chmod((contents / "MacOS/program").c_str(), 0755);
    for (const char* const target : {"MacOS/program", "/etc/passwd", "nowhere", ".."}) {
      fs::create_symlink(target, contents / ("to " + fs::path(target).filename().string()));
    }
    fs::create_directories(contents / "empty");
    return machine_.payload(name);
  }
  std::string makeFile(const std::string& name, const std::string& content = "new") {
    writeFile(machine_.payload(name), content);
    return machine_.payload(name);
  }

  /// Kinds, times and contents of all that is in the folder.
  [[nodiscard]] std::string describe(const fs::path& folder) const {
    const fs::path listing = on("").parent_path() / "listing";
    const std::string command = "cd '" + folder.string() + "' && (find . -printf '%p %y %T@ %l\\n'; find . -type f " +
                                "-exec cksum {} +) | sort >" + listing.string();
    EXPECT_EQ(std::system(command.c_str()), 0);
    return readFile(listing);
  }
  void expectHandedOver(const std::string& path) const {
    for (const auto& entry : fs::recursive_directory_iterator(on(path))) {
      EXPECT_EQ(ownerOf(entry.path()), handedOver_) << entry.path();
      EXPECT_EQ(modeOf(entry.path()), entry.is_symlink() ? "777" : "775") << entry.path();
    }
    EXPECT_EQ(ownerOf(on(path)) + " " + modeOf(on(path)), handedOver_ + " 775");
  }

  /// Installs all of them; why each could not be staged or committed.
  Paths install(const Items& items) {
    const auto transaction = begin();
    Noting noting;
    EXPECT_TRUE(transaction->stage(viewsOf(items), noting));
    EXPECT_TRUE(transaction->flush(noting));
    Numbers numbers;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (noting.errors[i].empty()) numbers.push_back(i);
    }
    const auto results = transaction->commit(numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (!results[i]) noting.errors[numbers[i]] = results[i].error().reason();
    }
    EXPECT_TRUE(transaction->finish(noting).empty());
    return noting.errors;
  }

  const Volume& volume_ = machine_.volume();
  const Ownership ownership_{nobody, *groupNumber("admin")};
  RootElevation elevation_{Places(volume_, "/Users/nobody", nobody)};
  std::shared_ptr<FileDescriptor> lock_;
};

TEST_P(TransactionTest, KeepsEverythingOfABundle) {
  const std::string source = makeSource("X.app", 300);
  const bool hasMark = ::setxattr(source.c_str(), "user.com.apple.quarantine", "0083;x", 6, 0) == 0;
  ::setxattr(source.c_str(), "user.other", "1", 1, 0);
  constexpr off_t far = off_t{3} << 30U;
  fs::resize_file(makeFile("sparse", "start"), far);
  std::ofstream(machine_.payload("sparse"), std::ios::app) << "end";
  EXPECT_EQ(install({{source, "/Applications/X.app"},
                     {source, "/Applications/Free.app", /*losesQuarantine=*/true},
                     {machine_.payload("sparse"), "/Users/nobody/sparse"}}),
            (Paths{"", "", ""}));
  EXPECT_EQ(describe(on("/Applications/X.app")), describe(source));
  expectHandedOver("/Applications/X.app");
  const auto hasAttribute = [&](const char* item, const char* name) {
    return ::getxattr(on(item).c_str(), name, nullptr, 0) > 0;
  };
  EXPECT_EQ(hasAttribute("/Applications/X.app", "user.com.apple.quarantine"), hasMark);
  EXPECT_FALSE(hasAttribute("/Applications/Free.app", "user.com.apple.quarantine"));
  EXPECT_EQ(hasAttribute("/Applications/Free.app", "user.other"), hasMark);
  struct stat status {};
  ::stat(on("/Users/nobody/sparse").c_str(), &status);
  EXPECT_LT(status.st_blocks * 512, 1 << 20U) << "the holes were filled";
  EXPECT_EQ(status.st_size, far + 3);
}

TEST_P(TransactionTest, ReplacesItemsOfAnyKindAndMakesFolders) {
  writeFile(on("/Applications/folder/deep/old"), "old");
  writeFile(on("/Applications/file"), "old");
  writeFile(on("/outside"), "kept");
  fs::create_symlink("/outside", on("/Applications/link"));
  fs::create_symlink("/nowhere", on("/Applications/dangling"));
  const std::string file = makeFile("file");
  Items items;
  for (const char* const name : {"folder", "file", "link", "dangling", "added"}) {
    items.push_back({file, "/Applications/" + std::string(name)});
  }
  const std::string support = "/Library/Application Support/Corvane";
  items.push_back({makeSource("Y.app"), support + "/A/B/C/Y.app"});
  items.push_back({file, support + "/A/B/file"});
  items.push_back({file, support + "/A/B/C/file"});
  EXPECT_EQ(install(items), Paths(items.size(), ""));
  for (const Asked& item : items) {
    if (item.source != file) continue;
    EXPECT_EQ(readFile(on(item.target)), "new") << item.target;
  }
  EXPECT_EQ(readFile(on("/outside")), "kept");
  EXPECT_EQ(modeOf(on(support)) + " " + modeOf(on(support + "/A")), "755 755");
  for (const std::string& folder : {support + "/A/B", support + "/A/B/C"}) {
    EXPECT_EQ(ownerOf(on(folder)) + " " + modeOf(on(folder)), handedOver_ + " 775") << folder;
  }
  expectHandedOver(support + "/A/B/C/Y.app");
  EXPECT_EQ(ownerOf(on("/Applications")), "0:0");
}

TEST_P(TransactionTest, ChangesNothingBeforeTheCommit) {
  writeFile(on("/Applications/X.app/old"), "old");
  const std::string source = makeSource("X.app");
  for (const std::size_t stopAfter : {std::size_t(0), std::size_t(2)}) {
    const auto transaction = begin();
    Noting noting;
    noting.stopAfter = stopAfter;
    const Status staged = transaction->stage(
        viewsOf({{source, "/Applications/X.app"}, {source, "/New/Folder/X.app"}, {source, "/Users/nobody/X.app"}}),
        noting);
    EXPECT_EQ(static_cast<bool>(staged), stopAfter == 0);
    EXPECT_EQ(noting.begun, stopAfter == 0 ? Numbers({0, 1, 2}) : Numbers({0, 1}));
    EXPECT_EQ(readFile(on("/Applications/X.app/old")), "old");
    EXPECT_FALSE(fs::exists(on("/New")));
    EXPECT_TRUE(transaction->finish(noting).empty());
  }
  EXPECT_NE(std::system(("find '" + on("").string() + "' -name '.installing*' | grep -q .").c_str()), 0);
  EXPECT_EQ(readFile(on("/Applications/X.app/old")), "old");
  EXPECT_EQ(namesIn(on("/Users/nobody")), "");
}

TEST_P(TransactionTest, ContinuesAfterAFailedItem) {
  const std::string pipe = makeSource("Pipe.app");
  ::mkfifo((pipe + "/Contents/pipe").c_str(), 0600);
  const std::string file = makeFile("file");
  writeFile(on("/Applications/File"), "in the way");
  writeFile(on("/Applications/Pipe.app/old"), "old");
  fs::create_directory_symlink("/nowhere", on("/Applications/Dangling"));
  writeFile(on("/Applications/Locked.app/inside"), "old");
  const int locked = ::open(on("/Applications/Locked.app/inside").c_str(), O_RDONLY);
  int flags = FS_IMMUTABLE_FL;
  const bool canLock = ::ioctl(locked, FS_IOC_SETFLAGS, &flags) == 0;
  const Paths errors = install({{pipe, "/Applications/Pipe.app"},
                                {machine_.payload("none"), "/Applications/none"},
                                {file, "/Applications/File/below"},
                                {file, "/Applications/Dangling/x"},
                                {file, "/Applications/Locked.app"},
                                {file, "/Applications/.."},
                                {file, "/Applications/fine"}});
  flags = 0;
  ::ioctl(locked, FS_IOC_SETFLAGS, &flags);
  ::close(locked);
  EXPECT_EQ(errors[0], "Operation not supported");
  EXPECT_EQ(errors[1], "No such file or directory");
  EXPECT_EQ(errors[2], "Not a directory");
  EXPECT_EQ(errors[3], "File exists");
  EXPECT_EQ(errors[4], canLock ? "Operation not permitted" : "");
  EXPECT_EQ(errors[5], "Invalid argument");
  EXPECT_EQ(errors[6], "");
  EXPECT_EQ(readFile(on("/Applications/Pipe.app/old")), "old");
  EXPECT_EQ(readFile(on("/Applications/Locked.app/inside")), canLock ? "old" : "(no such file)");
  EXPECT_EQ(readFile(on("/Applications/File")), "in the way");
  EXPECT_EQ(namesIn(on("/Library/Application Support")), "");
}

TEST_P(TransactionTest, MovesNoUnfinishedCopyWithANewFolder) {
  const std::string pipes = makeSource("Pipes.app");
  ::mkfifo((machine_.payload("Pipes.app") / "Contents/pipe").c_str(), 0600);
  EXPECT_EQ(install({{makeFile("file"), "/Applications/New/file"}, {pipes, "/Applications/New/Pipes.app"}}),
            (Paths{"", "Operation not supported"}));
  EXPECT_EQ(namesIn(on("/Applications/New")), "file");
}

TEST_P(TransactionTest, InstallsTwiceToOnePlaceAndRemoves) {
  const std::string one = makeFile("one", "one");
  const std::string two = makeFile("two", "two");
  writeFile(on("/Applications/gone/deep"), "");
  EXPECT_EQ(install({{one, "/Applications/P/x"}, {one, "/Applications/P/x"}, {two, "/Applications/P/x"}}),
            Paths(3, ""));
  EXPECT_EQ(readFile(on("/Applications/P/x")), "two");
  EXPECT_EQ(install({{"", "/Applications/gone"}, {"", "/Applications/none"}}),
            (Paths{"", "No such file or directory"}));
  EXPECT_EQ(namesIn(on("/Applications")), "P");
}

TEST_P(TransactionTest, FailsBothOfTwoEqualItemsWhenOneCannotBePlaced) {
  const std::string file = makeFile("one", "new");
  writeFile(on("/Applications/P/x"), "old");
  const Items items = {{file, "/Applications/P/x"}, {file, "/Applications/P/x"}};
  const auto transaction = begin();
  Noting noting;
  EXPECT_TRUE(transaction->stage(viewsOf(items), noting));
  // Somebody clears the hidden folder.
  for (const auto& folder : fs::directory_iterator(on("/Library/Application Support/.installing"))) {
    if (fs::is_directory(folder)) fs::remove(folder.path() / "x");
  }
  const std::vector<Status> results = transaction->commit(Numbers{0, 1});
  EXPECT_EQ(results[0].error().reason(), "No such file or directory");
  EXPECT_FALSE(results[1]);
  EXPECT_EQ(readFile(on("/Applications/P/x")), "old");
}

TEST_P(TransactionTest, TakesMoreItemsThanOneRequestHolds) {
  Items items;
  const std::string file = makeFile("file", "x");
  const std::string folder = "/Applications/" + std::string(200, 'f') + "/" + std::string(200, 'g');
  for (int i = 0; i < 2500; ++i) items.push_back({file, folder + "/" + std::to_string(i) + std::string(200, 'n')});
  const Paths errors = install(items);
  EXPECT_EQ(std::ranges::count(errors, ""), 2500);
}

TEST_P(TransactionTest, KeepsTheOldItemOnAFullDisk) {
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
class OwnTransactionTest : public TransactionTest {};

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

TEST_P(TransactionTest, CleansUpAfterAKillOnEveryFileSystem) {
  if (!isIsolated()) GTEST_SKIP() << "needs tests/isolated: it mounts a file system";
  fs::create_directories(on("/Applications/other"));
  ASSERT_EQ(::mount("none", on("/Applications/other").c_str(), "tmpfs", 0, "mode=755"), 0);
  const std::string source = makeSource("X.app", 1000);
  const fs::path area = on("/Library/Application Support/.installing");
  const fs::path otherArea = on("/Applications/other/.installing");
  {
    auto transaction = begin();
    Noting noting;
    EXPECT_TRUE(
        transaction->stage(viewsOf({{source, "/Applications/X.app"}, {source, "/Applications/other/X.app"}}), noting));
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

TEST_P(TransactionTest, NeedsTheLockOfTheVolume) {
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

INSTANTIATE_TEST_SUITE_P(BothWays, TransactionTest, testing::Values(Way::byRoot, Way::byHelper),
                         testing::PrintToStringParamName());
INSTANTIATE_TEST_SUITE_P(OneWay, OwnTransactionTest, testing::Values(Way::byRoot), testing::PrintToStringParamName());

}  // namespace
