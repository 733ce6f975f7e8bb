#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "platform/processes/Pipe.h"
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
    run("/bin/cp", {"-R", machine_.inBundle("Resources/en.lproj"), path + "/copy"});
    run("/bin/rm", {"-fR", path});
  }

  const fs::path own_ = on("/Applications/Own");
  const std::string untouched_ = "secret secret 0:0 755 0:0 755 0:0 600";
};

TEST_F(RightsAttackTest, OutsideThePlacesHasTheUsersRightsOnly) {
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
  EXPECT_EQ(ownerOf(on("/Applications")) + ownerOf(on("/Library")) + ownerOf(on("")), "0:00:00:0");
  EXPECT_FALSE(fs::exists(on("/System")) || fs::exists(on("/none")));
  makeOwnFolder("/elsewhere");
  run("/bin/mkdir", {"-m775", "-p", "/elsewhere/a"});
  EXPECT_EQ(ownerOf(on("/elsewhere/a")), "65534:65534") << "and those it has";
}

TEST_F(RightsAttackTest, NothingThatBelongsToOthersIsHandedOver) {
  fs::create_hard_link(on("/private/etc/secret"), own_ / "hard");
  fs::create_directories(own_ / "roots");
  writeFile(own_ / "program", "");
  ::chown((own_ / "program").c_str(), nobody, nobody);
  ::chmod((own_ / "program").c_str(), 06755);
  run("/usr/sbin/chown", {"-R", owner_, "/Applications/Own", "/Applications/Own/hard"});
  run("/bin/chmod", {"-R", "0775", "/Applications/Own"});
  EXPECT_EQ(outside(), untouched_);
  EXPECT_EQ(ownerOf(own_ / "roots"), "0:0");
  EXPECT_EQ(ownerOf(own_ / "program") + " " + modeOf(own_ / "program"), handedOver_ + " 775");
}

TEST_F(RightsAttackTest, OnlyWhatTheUserCanReadIsCopied) {
  const fs::path payload = machine_.payload("X");
  fs::create_directories(payload / "inner");
  const auto copiedFrom = [&](const fs::path& source) {
    run("/bin/cp", {"-R", source, "/Applications/copy"});
    const bool isThere = fs::exists(fs::symlink_status(on("/Applications/copy")));
    run("/bin/rm", {"-fR", "/Applications/copy"});
    return isThere;
  };
  EXPECT_TRUE(copiedFrom(payload));
  fs::create_hard_link(on("/private/etc/secret"), payload / "inner/hard");
  EXPECT_FALSE(copiedFrom(payload));
  EXPECT_FALSE(copiedFrom(payload / "inner/hard"));
  EXPECT_FALSE(copiedFrom("/Applications/Own")) << "outside the bundle";
  EXPECT_EQ(namesIn(on("/Applications")), "Own") << "and no half copy is left";
}

TEST_F(RightsAttackTest, FoldersExchangedWhileToolsRunLeadNowhereElse) {
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

TEST_F(RightsAttackTest, TheVolumeStaysTheOneThatItWas) {
  const fs::path aside = on("").parent_path() / "aside";
  fs::rename(on(""), aside);
  fs::create_directories(on("/Applications/Own"));
  run("/usr/bin/touch", {"/Applications/x"});
  EXPECT_EQ(namesIn(aside / "Applications") + "|" + namesIn(on("/Applications")), "Own x|Own");
}

TEST_F(RightsAttackTest, GarbageEndsTheHelper) {
  const auto pipe = makePipe();
  const FileDescriptor file(::open("/dev/null", O_RDWR | O_CLOEXEC));
  const std::string good = messagesFor({"/usr/bin/touch", {"/Applications/x"}}).front();
  const std::string full = "p" + std::string(mostMessageBytes - 1, 'x');
  const std::pair<std::vector<std::string>, int> attempts[] = {
      {{"garbage"}, pipe->writing.get()},
      {{good}, -1},
      {{good}, file.get()},
      {{full + "more"}, pipe->writing.get()},
      {std::vector<std::string>(40, full), -1},
  };
  for (const auto& [messages, descriptor] : attempts) {
    HelperProcess helper(program_, on(""));
    ASSERT_EQ(helper.socket.receive().bytes, HelperSays::ready);
    for (const std::string& message : messages) static_cast<void>(helper.socket.send(message, descriptor));
    EXPECT_EQ(helper.socket.receive().kind, Message::Kind::end) << messages.front().substr(0, 10);
    EXPECT_EQ(helper.end(), 1) << messages.front().substr(0, 10);
  }
  EXPECT_FALSE(fs::exists(on("/Applications/x")));
}

}  // namespace
