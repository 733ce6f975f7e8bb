// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "platform/rights/HelperTransaction.h"
#include "support/HelperProcess.h"

namespace {

/// What somebody with the user's account, and the connection to a helper, could try.
class RightsAttackTest : public HelperTest {
 protected:
  RightsAttackTest() { makeOwnFolder("/Applications/Own"); }

  /// All that must stay untouched.
  [[nodiscard]] std::string outside() const {
    std::string text = namesIn(on("/private/etc")) + " " + readFile(on("/private/etc/secret"));
    for (const char* const path : {"/private", "/private/etc", "/private/etc/secret"}) {
      text += " " + ownerOf(on(path)) + " " + modeOf(on(path));
    }
    return text;
  }

  /// Every change that there is, to the item.
  void changeAll(const std::string& path) {
    run("/usr/sbin/chown", {"-R", owner_, path});
    run("/bin/chmod", {"-R", "0775", path});
    run("/usr/bin/touch", {path + "/new", path});
    run("/bin/mkdir", {"-m775", "-p", path + "/a/b"});
    run("/bin/mv", {"-f", "/Applications/Own/mine", path});
    install(machine_.inBundle("Resources/en.lproj"), path + "/copy");
    run("/bin/rm", {"-fR", path});
  }

  /// Whether the helper installs the item.
  bool install(const std::string& source, const std::string& target) {
    const auto lock = *machine_.volume().tryLock();
    const auto transaction = HelperTransaction::begin(connection_, lock->get());
    PatientObserver observer;
    return transaction && (*transaction)->stage({{{source, target}}}, observer) &&
           (*transaction)->commit({{0}}).front();
  }

  const fs::path own_ = on("/Applications/Own");
  const std::string untouched_ = "secret secret 0:0 755 0:0 755 0:0 600";
};

TEST_F(RightsAttackTest, UsesOnlyTheUsersRightsOutsideThePlaces) {
  const fs::path outsideVolume = on("").parent_path() / "outside";
  writeFile(outsideVolume / "file", "");
  const std::string beyond = ownerOf(outsideVolume) + modeOf(outsideVolume / "file");
  Paths paths;
  for (const fs::path& target : {fs::path("/private/etc"), fs::path("../../private/etc"), outsideVolume,
                                 fs::path("../../../outside"), fs::path("/private/etc/secret"), fs::path("/none")}) {
    const std::string link = "/Applications/Own/link" + std::to_string(paths.size());
    fs::create_symlink(target, on(link));
    for (const char* const inner : {"/etc", "/secret", "/file", ""}) paths.push_back(link + inner);
  }
  for (const std::string& path : paths) changeAll(path);
  EXPECT_EQ(namesIn(own_), "") << "what lies in a place is removed";
  for (const char* const path :
       {"/Applications/Own", "/private/etc", "/private/etc/secret", "/private/etc/none", "/", "/Library",
        "/Applications", "/Applications/..", "/Library/Application Support", "/System"}) {
    changeAll(path);
  }
  EXPECT_EQ(outside(), untouched_);
  EXPECT_EQ(ownerOf(outsideVolume) + modeOf(outsideVolume / "file"), beyond);
  EXPECT_EQ(namesIn(outsideVolume), "file");
  for (const char* const folder : {"/Applications", "/Library", ""}) EXPECT_EQ(ownerOf(on(folder)), "0:0") << folder;
  EXPECT_FALSE(fs::exists(on("/System")));
  EXPECT_FALSE(fs::exists(on("/none")));
  makeOwnFolder("/elsewhere");
  EXPECT_EQ(run("/bin/mkdir", {"-m775", "-p", "/elsewhere/a"}), "");
  EXPECT_EQ(ownerOf(on("/elsewhere/a")), "65534:65534") << "and those it has";
}

TEST_F(RightsAttackTest, HandsOverNothingOfOtherUsers) {
  fs::create_hard_link(on("/private/etc/secret"), own_ / "hard");
  fs::create_directories(own_ / "roots");
  writeFile(own_ / "program", "");
  setOwner(own_ / "program", nobody, nobody);
  ::chmod((own_ / "program").c_str(), 06755);
  run("/usr/sbin/chown", {"-R", owner_, "/Applications/Own", "/Applications/Own/hard"});
  run("/bin/chmod", {"-R", "0775", "/Applications/Own"});
  EXPECT_EQ(outside(), untouched_);
  EXPECT_EQ(ownerOf(own_ / "roots"), "0:0");
  EXPECT_EQ(ownerOf(own_ / "program") + " " + modeOf(own_ / "program"), handedOver_ + " 775");
}

TEST_F(RightsAttackTest, CopiesOnlyWhatTheUserCanRead) {
  const fs::path payload = machine_.payload("X");
  fs::create_directories(payload / "inner");
  EXPECT_TRUE(install(payload, "/Applications/copy"));
  fs::create_hard_link(on("/private/etc/secret"), payload / "inner/hard");
  for (const fs::path& source : {payload, payload / "inner/hard", payload / "../../../../../volume/private/etc",
                                 fs::path("/Applications/Own"), fs::path("/etc/hostname")}) {
    EXPECT_FALSE(install(source, "/Applications/other")) << source;
  }
  EXPECT_EQ(namesIn(on("/Applications")), "Own copy") << "and no half copy is left";
}

TEST_F(RightsAttackTest, ResistsStagedItemsExchangedForLinks) {
  const fs::path area = on("/Library/Application Support/.installing");
  for (int i = 0; i < 200; ++i) writeFile(machine_.payload("files") / std::to_string(i), "x");
  std::atomic<bool> isOver = false;
  // The user owns the folder of staged items, and replaces what is in it while the helper works.
  std::thread attacker([&] {
    while (!isOver) {
      std::error_code ignored;
      for (const auto& entry : fs::directory_iterator(area / "0", ignored)) {
        fs::remove_all(entry.path(), ignored);
        fs::create_directory_symlink("/private/etc", entry.path(), ignored);
      }
      fs::remove(area / "0.to", ignored);
      fs::create_symlink("/private/etc", area / "0.to", ignored);
    }
  });
  for (int i = 0; i < 200; ++i) {
    install(machine_.payload("files") / std::to_string(i), "/Applications/Own/" + std::to_string(i));
  }
  isOver = true;
  attacker.join();
  EXPECT_EQ(outside(), untouched_);
}

TEST_F(RightsAttackTest, ResistsFoldersExchangedWhileToolsRun) {
  makeOwnFolder("/Applications/Own/folder");
  fs::create_directory_symlink("/private/etc", own_ / "link");
  std::atomic<bool> isOver = false;
  std::thread attacker([&] {
    while (!isOver) {
      ::syscall(SYS_renameat2, AT_FDCWD, (own_ / "folder").c_str(), AT_FDCWD, (own_ / "link").c_str(), 2);
    }
  });
  for (int i = 0; i < 300; ++i) {
    const std::string secret = "/Applications/Own/folder/secret";
    run("/usr/bin/touch", {"/Applications/Own/folder/x", secret});
    run("/usr/sbin/chown", {"-R", owner_, "/Applications/Own/folder", secret});
    run("/bin/chmod", {"-R", "0775", "/Applications/Own"});
    run("/bin/rm", {"-fR", "/Applications/Own/folder/x", secret});
  }
  isOver = true;
  attacker.join();
  EXPECT_EQ(outside(), untouched_);
}

TEST_F(RightsAttackTest, KeepsItsVolumeWhenThePathIsReplaced) {
  const fs::path aside = on("").parent_path() / "aside";
  fs::rename(on(""), aside);
  for (const char* const folder : {"/Applications/Own", "/Library/Application Support"})
    fs::create_directories(on(folder));
  run("/usr/bin/touch", {"/Applications/x"});
  EXPECT_EQ(namesIn(aside / "Applications") + "|" + namesIn(on("/Applications")), "Own x|Own");
}

TEST_F(RightsAttackTest, GarbageEndsTheHelper) {
  const FileDescriptor file(::open("/dev/null", O_RDWR | O_CLOEXEC));
  const std::string full = "p" + std::string(maxMessageBytes - 1, 'x');
  const std::pair<std::vector<std::string>, int> attempts[] = {
      {{"garbage"}, -1},
      {{full}, file.get()},  // a descriptor before the end
      {{full + "more"}, -1},
      {std::vector<std::string>(40, full), -1},
  };
  for (const auto& [messages, descriptor] : attempts) {
    HelperProcess helper(program_, on(""));
    ASSERT_EQ(helper.socket.receive().bytes, messagesFor({std::string(HelperSays::ready)}).front());
    for (const std::string& message : messages) static_cast<void>(helper.socket.send(message, descriptor));
    EXPECT_EQ(helper.socket.receive().kind, Message::Kind::end) << messages.front().substr(0, 10);
    EXPECT_EQ(helper.end(), 1) << messages.front().substr(0, 10);
  }
}

}  // namespace
