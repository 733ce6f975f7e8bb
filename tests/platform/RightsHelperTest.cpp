#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "support/HelperProcess.h"

namespace {

class RightsHelperTest : public HelperTest {};

TEST_F(RightsHelperTest, DoesWhatTheToolsDo) {
  const std::string app = machine_.payload("X.app");
  makeBundle(app, {});
  ::chmod((app + "/Contents/Info.plist").c_str(), 0444);
  const std::string target = support_ + "/Deep/X.app";
  EXPECT_EQ(run("/bin/mkdir", {"-m775", "-p", support_ + "/Deep"}), launchSucceeded);
  EXPECT_EQ(ownerOf(on(support_)) + " " + modeOf(on(support_)), handedOver_ + " 755");
  EXPECT_EQ(ownerOf(on(support_ + "/Deep")) + " " + modeOf(on(support_ + "/Deep")), "65534:65534 775")
      << "inside a folder of the user's with the user's rights";
  EXPECT_EQ(ownerOf(on("/Library/Application Support")), "0:0") << "everybody's, and nobody's";
  ::chown(on(support_ + "/Deep").c_str(), 0, 0);  // so that the user's own rights do not do

  EXPECT_EQ(run("/bin/cp", {"-R", app, target}), launchSucceeded);
  EXPECT_EQ(readFile(on(target + "/Contents/Info.plist")), propertyListOf({}));
  EXPECT_EQ(ownerOf(on(target + "/Contents")), "65534:65534") << "copied with the user's rights";
  EXPECT_EQ(namesIn(on(support_ + "/Deep")), "X.app");
  const bool hasMarks = ::setxattr(on(target).c_str(), "user.com.apple.quarantine", "1", 1, 0) == 0;
  run("/usr/sbin/chown", {"-R", owner_, target});
  run("/bin/chmod", {"-R", "0775", target});
  run("/usr/bin/xattr", {"-dr", "com.apple.quarantine", target});
  for (const std::string& item : {target, target + "/Contents", target + "/Contents/Info.plist"}) {
    EXPECT_EQ(ownerOf(on(item)) + " " + modeOf(on(item)), handedOver_ + " 775") << item;
  }
  EXPECT_TRUE(!hasMarks || ::getxattr(on(target).c_str(), "user.com.apple.quarantine", nullptr, 0) < 0);

  run("/usr/bin/touch", {support_ + "/Deep/log"});
  EXPECT_EQ(ownerOf(on(support_ + "/Deep/log")) + " " + modeOf(on(support_ + "/Deep/log")), handedOver_ + " 644");
  run("/bin/rm", {"-fR", target, support_ + "/Deep/none", support_ + "/Deep/log"});
  EXPECT_EQ(namesIn(on(support_ + "/Deep")), "");
}

TEST_F(RightsHelperTest, RefusesAToolThatDoesNotExistAndGoesOn) {
  EXPECT_EQ(run("/usr/bin/no-such-tool", {}), errAuthorizationToolExecuteFailure);
  EXPECT_EQ(run("/usr/sbin/chown", {"-R", "root:admin", "/Applications"}), errAuthorizationToolExecuteFailure);
  EXPECT_EQ(run("/bin/rm", {"-fR", std::string("/x\0y", 4)}), errAuthorizationToolExecuteFailure);
  EXPECT_EQ(run("/bin/rm", {"-fR", "/Applications/none"}), launchSucceeded);
}

TEST_F(RightsHelperTest, TakesAMegabyteOfArguments) {
  std::vector<std::string> arguments = {"-fR"};
  writeFile(on("/Applications/last"), "");
  for (int i = 0; i < 12'000; ++i) arguments.push_back("/Applications/" + std::string(80, 'x') + std::to_string(i));
  arguments.emplace_back("/Applications/last");
  EXPECT_EQ(run("/bin/rm", arguments), launchSucceeded);
  EXPECT_EQ(namesIn(on("/Applications")), "");
  EXPECT_EQ(run("/usr/bin/touch", {std::string(3'000'000, 'x')}), errAuthorizationToolExecuteFailure);
}

TEST_F(RightsHelperTest, LaunchesTenThousandToolsInARow) {
  // Fewer descriptors than launches, here and in the helper.
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  const rlimit few{64, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &few);
  helper_.reset();
  start();
  int launched = 0;
  for (int i = 0; i < 10'000; ++i) launched += run("/usr/bin/touch", {"/Applications/x"}) == launchSucceeded ? 1 : 0;
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(launched, 10'000);
  EXPECT_EQ(ownerOf(on("/Applications/x")), handedOver_);
  EXPECT_EQ(helper_->end(), 0);
}

TEST_F(RightsHelperTest, KilledMidLaunchIsAFailedLaunch) {
  std::unique_ptr<CommunicationsPipe> pipe;
  HelperConnection& connection = helper_->connection();
  ASSERT_EQ(connection.launch({"/bin/rm", {"-fR", "/Applications/none"}}, pipe), launchSucceeded);
  ::kill(helper_->id(), SIGSTOP);
  std::thread killer([&] {
    int waiting = 0;
    while (waiting == 0) ::ioctl(connection.descriptor(), SIOCOUTQ, &waiting);
    ::kill(helper_->id(), SIGKILL);
  });
  EXPECT_EQ(connection.launch({"/usr/bin/touch", {"/Applications/x"}}, pipe), errAuthorizationToolExecuteFailure);
  killer.join();
  connection.waitForTool();  // returns
  EXPECT_FALSE(connection.hasTools());
  EXPECT_EQ(connection.launch({"/usr/bin/touch", {"/Applications/x"}}, pipe), errAuthorizationToolExecuteFailure);
  EXPECT_EQ(helper_->end(), -SIGKILL);
  EXPECT_FALSE(fs::exists(on("/Applications/x")));
}

TEST_F(RightsHelperTest, ServesOneUserOnlyAndEndsWithTheInstaller) {
  EXPECT_EQ(helper_->end(), 0);
  const auto isServed = [&](const fs::path& volume, uid_t user, const std::vector<std::string>& environment = {}) {
    HelperProcess other(program_, volume, user, environment);
    return HelperConnection(other.takeSocket()).receiveReady();
  };
  EXPECT_TRUE(isServed(on(""), nobody, {"SUDO_UID=65534"}));
  EXPECT_FALSE(isServed(on(""), nobody, {"SUDO_UID=1"})) << "called by somebody else";
  EXPECT_FALSE(isServed(on(""), nobody, {"PKEXEC_UID=0"}));
  EXPECT_FALSE(isServed(on(""), 0)) << "root needs no helper";
  EXPECT_FALSE(isServed(on(""), 54321)) << "no account";
  fs::create_directory_symlink(on(""), on("/self"));
  EXPECT_FALSE(isServed(on("/self"), nobody)) << "a link";
  EXPECT_FALSE(isServed("volume", nobody));
  ::chmod(on("/private").c_str(), 0700);
  EXPECT_FALSE(isServed(on("/private/etc"), nobody)) << "the user does not get there";
  fs::create_directories(on("/theirs"));
  ::chown(on("/theirs").c_str(), 1, 1);
  EXPECT_FALSE(isServed(on("/theirs"), nobody)) << "somebody else's volume";
}

TEST_F(RightsHelperTest, HasGivenUpWhatItDoesNotNeed) {
  const std::string status = readFile("/proc/" + std::to_string(helper_->id()) + "/status");
  const auto has = [&](const std::string& line) { return status.find(line + "\n") != std::string::npos; };
  // Owners, other people's files, and becoming the user: bits 0, 1, 3, 6 and 7.
  EXPECT_TRUE(has("NoNewPrivs:\t1") && has("CapEff:\t00000000000000cb") && has("CapPrm:\t00000000000000cb") &&
              has("CapBnd:\t00000000000000cb") && has("CapInh:\t0000000000000000"))
      << status;
}

}  // namespace
