// SPDX-License-Identifier: Apache-2.0

#include "platform/files/TransactionTest.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>

#include <fstream>

namespace {

TEST_P(TransactionTest, KeepsEverythingOfABundle) {
  const std::string source = makeSource("X.app", 300);
  const bool hasMark = ::setxattr(source.c_str(), "user.com.apple.quarantine", "0083;x", 6, 0) == 0;
  ::setxattr(source.c_str(), "user.other", "1", 1, 0);
  constexpr off_t far = off_t{3} << 30U;
  const std::string outside = ownerOf("/etc/passwd") + modeOf("/etc/passwd");
  const std::string sparse = makeFile("sparse", "start");
  fs::resize_file(sparse, far);
  std::ofstream(sparse, std::ios::app) << "end";
  EXPECT_EQ(install({{source, "/Applications/X.app"},
                     {source, "/Applications/Free.app", /*losesQuarantine=*/true},
                     {sparse, "/Users/nobody/sparse"}}),
            (Paths{"", "", ""}));
  EXPECT_EQ(describe(on("/Applications/X.app")), describe(source));
  expectHandedOver("/Applications/X.app");
  EXPECT_EQ(ownerOf("/etc/passwd") + modeOf("/etc/passwd"), outside) << "a link is handed over, not where it leads";
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
  const std::string bundle = makeSource("Y.app");
  const std::string support = "/Library/Application Support/Corvane";
  const Paths targets = {"/Applications/folder",   "/Applications/file",   "/Applications/link",
                         "/Applications/dangling", "/Applications/added",  support + "/A/B/C/Y.app",
                         support + "/A/B/file",    support + "/A/B/C/file"};
  Items items;
  for (const std::string& target : targets) items.push_back({target.ends_with("Y.app") ? bundle : file, target});
  EXPECT_EQ(install(items), Paths(items.size(), ""));
  for (const std::string& target : targets) {
    if (target.ends_with("Y.app")) continue;
    EXPECT_EQ(readFile(on(target)), "new") << target;
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
    NotingObserver noting;
    noting.stopAfter = stopAfter;
    const Status staged = transaction->stage(
        Items{{source, "/Applications/X.app"}, {source, "/New/Folder/X.app"}, {source, "/Users/nobody/X.app"}}, noting);
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
  const std::string missing = machine_.payload("none");
  const std::pair<TransactionItem, std::string> cases[] = {
      {{pipe, "/Applications/Pipe.app"}, "Operation not supported"},
      {{missing, "/Applications/none"}, "No such file or directory"},
      {{file, "/Applications/File/below"}, "Not a directory"},
      {{file, "/Applications/Dangling/x"}, "File exists"},
      {{file, "/Applications/Locked.app"}, canLock ? "Operation not permitted" : ""},
      {{file, "/Applications/.."}, "Invalid argument"},
      {{file, "/Applications/fine"}, ""}};
  Items items;
  Paths expected;
  for (const auto& [item, error] : cases) items.push_back(item), expected.push_back(error);
  EXPECT_EQ(install(items), expected);
  flags = 0;
  ::ioctl(locked, FS_IOC_SETFLAGS, &flags);
  ::close(locked);
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
  NotingObserver noting;
  EXPECT_TRUE(transaction->stage(items, noting));
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
  const std::string file = makeFile("file", "x");
  const std::string folder = "/Applications/" + std::string(200, 'f') + "/" + std::string(200, 'g') + "/";
  Paths targets;
  for (int i = 0; i < 2500; ++i) targets.push_back(folder + std::to_string(i) + std::string(200, 'n'));
  Items items;
  for (const std::string& target : targets) items.push_back({file, target});
  EXPECT_EQ(install(items), Paths(2500, ""));
}

INSTANTIATE_TEST_SUITE_P(BothWays, TransactionTest, testing::Values(Way::byRoot, Way::byHelper),
                         testing::PrintToStringParamName());

}  // namespace
