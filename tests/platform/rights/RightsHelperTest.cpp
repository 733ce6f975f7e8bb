#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "support/HelperProcess.h"

namespace {

using RightsHelperTest = HelperTest;

TEST_F(RightsHelperTest, DoesWhatTheToolsDo) {
  const std::string app = machine_.payload("X.app");
  makeBundle(app, {});
  ::chmod((app + "/Contents/Info.plist").c_str(), 0444);
  const std::string support = "/Library/Application Support/Corvane";
  const std::string deep = support + "/Deep";
  const std::string target = deep + "/X.app";
  const auto state = [&](const std::string& path) { return ownerOf(on(path)) + " " + modeOf(on(path)); };
  EXPECT_EQ(run("/bin/mkdir", {"-m775", "-p", deep}), launchSucceeded);
  EXPECT_EQ(state(support), handedOver_ + " 755");
  EXPECT_EQ(state(deep), "65534:65534 775") << "inside a folder of the user's with the user's rights";
  ::chown(on(deep).c_str(), 0, 0);  // so that the user's own rights do not do

  EXPECT_EQ(run("/bin/cp", {"-R", app, target}), launchSucceeded);
  EXPECT_EQ(readFile(on(target + "/Contents/Info.plist")), propertyListOf({}));
  EXPECT_EQ(ownerOf(on(target + "/Contents")), "65534:65534") << "copied with the user's rights";
  const bool hasMarks = ::setxattr(on(target).c_str(), "user.com.apple.quarantine", "1", 1, 0) == 0;
  run("/usr/sbin/chown", {"-R", owner_, target});
  run("/usr/bin/xattr", {"-dr", "com.apple.quarantine", target});
  EXPECT_TRUE(!hasMarks || ::getxattr(on(target).c_str(), "user.com.apple.quarantine", nullptr, 0) < 0);
  const std::string list = target + "/Contents/Info.plist";
  run("/bin/chmod", {"-R", "0775", target});
  for (const std::string& item : {target, target + "/Contents", list}) EXPECT_EQ(state(item), handedOver_ + " 775");

  run("/usr/bin/touch", {deep + "/log"});
  EXPECT_EQ(state(deep + "/log"), handedOver_ + " 644");
  run("/bin/rm", {"-fR", target, deep + "/none", deep + "/log"});
  EXPECT_EQ(namesIn(on(deep)), "");
}

TEST_F(RightsHelperTest, TakesLongRequestsAndManyAndGoesOnAfterBadOnes) {
  writeFile(on("/Applications/last"), "");
  const std::pair<const char*, std::vector<std::string>> bad[] = {
      {"/usr/bin/no-such-tool", {}},
      {"/bin/rm", {"-fR", std::string("/Applications/last\0y", 20)}},
      {"/usr/bin/touch", {"/" + std::string(3'000'000, 'x')}},
      {"/bin/rm", std::vector<std::string>(mostArguments + 1, "-fR")},
  };
  for (const auto& [tool, arguments] : bad) EXPECT_EQ(run(tool, arguments), errAuthorizationToolExecuteFailure) << tool;
  EXPECT_EQ(namesIn(on("/Applications")), "last");

  const auto descriptors = [](const std::string& process) {
    return std::distance(fs::directory_iterator("/proc/" + process + "/fd"), {});
  };
  const std::string helper = std::to_string(helper_->process);
  const auto before = descriptors("self") + descriptors(helper);
  for (int i = 0; i < 10'000; ++i) ASSERT_EQ(run("/usr/bin/touch", {"/Applications/x"}), launchSucceeded);
  EXPECT_LT(descriptors("self") + descriptors(helper), before + 10);

  std::vector<std::string> arguments = {"-fR", "/Applications/x"};
  for (int i = 0; i < 12'000; ++i) arguments.push_back("/Applications/" + std::string(80, 'x') + std::to_string(i));
  arguments.emplace_back("/Applications/last");
  EXPECT_EQ(run("/bin/rm", arguments), launchSucceeded);
  EXPECT_EQ(namesIn(on("/Applications")), "");
}

TEST_F(RightsHelperTest, KilledMidLaunchIsAFailedLaunch) {
  std::unique_ptr<CommunicationsPipe> pipe;
  ASSERT_EQ(connection_->launch({"/bin/rm", {"-fR", "/Applications/none"}}, pipe), launchSucceeded);
  ::kill(helper_->process, SIGSTOP);
  std::thread killer([&] {
    int waiting = 0;
    while (waiting == 0) ::ioctl(connection_->descriptor(), SIOCOUTQ, &waiting);
    ::kill(helper_->process, SIGKILL);
  });
  EXPECT_EQ(connection_->launch({"/usr/bin/touch", {"/Applications/x"}}, pipe), errAuthorizationToolExecuteFailure);
  killer.join();
  connection_->waitForTool();  // returns
  EXPECT_EQ(connection_->launch({"/usr/bin/touch", {"/Applications/x"}}, pipe), errAuthorizationToolExecuteFailure);
  EXPECT_EQ(helper_->end(), -SIGKILL);
  EXPECT_FALSE(fs::exists(on("/Applications/x")));
}

TEST_F(RightsHelperTest, ServesOneUserOnlyAndEndsWithTheInstaller) {
  connection_.reset();
  EXPECT_EQ(helper_->end(), 0);
  fs::create_directory_symlink(on(""), on("/self"));
  fs::create_directories(on("/theirs"));
  ::chown(on("/theirs").c_str(), 1, 1);
  ::chmod(on("/private").c_str(), 0700);
  const std::tuple<fs::path, uid_t, const char*, bool> cases[] = {
      {on(""), nobody, "SUDO_UID=65534", true}, {on(""), nobody, "SUDO_UID=1", false},  // called by somebody else
      {on(""), nobody, "PKEXEC_UID=0", false},  {on(""), 0, "", false},                 // root needs no helper
      {on("/self"), nobody, "", false},         {"volume", nobody, "", false},
      {on("/private/etc"), nobody, "", false},  // the user does not get there
      {on("/theirs"), nobody, "", false},       // somebody else's volume
  };
  for (const auto& [volume, user, variable, isServed] : cases) {
    HelperProcess other(program_, volume, user, variable);
    EXPECT_EQ(HelperConnection(std::move(other.socket)).receiveReady(), isServed) << volume << user << variable;
  }
}

TEST_F(RightsHelperTest, HasGivenUpWhatItDoesNotNeed) {
  const std::string status = readFile("/proc/" + std::to_string(helper_->process) + "/status");
  // Owners, other people's files, and becoming the user: bits 0, 1, 3, 6 and 7.
  const std::string few = "\t00000000000000cb\n";
  const std::string none = "\t0000000000000000\n";
  const std::string left = "CapInh:" + none + "CapPrm:" + few + "CapEff:" + few + "CapBnd:" + few + "CapAmb:" + none;
  EXPECT_NE(status.find(left + "NoNewPrivs:\t1\n"), std::string::npos) << status;
}

}  // namespace
