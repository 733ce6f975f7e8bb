// SPDX-License-Identifier: Apache-2.0

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "platform/rights/HelperTransaction.h"
#include "support/HelperProcess.h"

namespace {

using RightsHelperTest = HelperTest;

TEST_F(RightsHelperTest, LeavesFilesOfOthersTheirs) {
  EXPECT_EQ(run("/bin/mkdir", {"-m775", "-p", "/private/a"}), "Permission denied");
  writeFile(on("/Applications/roots"), "root's");
  ::chmod(on("/Applications/roots").c_str(), 0600);
  EXPECT_EQ(run("/usr/bin/touch", {"/Applications/roots"}), "File exists");
  EXPECT_EQ(ownerOf(on("/Applications/roots")), "0:0");
}

TEST_F(RightsHelperTest, HandlesLongManyAndInvalidRequests) {
  writeFile(on("/Applications/last"), "");
  const std::pair<const char*, std::vector<std::string>> bad[] = {
      {"/usr/bin/no-such-tool", {}}, {"commit", {"0"}}, {"stage", {}}, {"finish", {}}};
  for (const auto& [tool, arguments] : bad) EXPECT_EQ(run(tool, arguments), "refused") << tool;
  for (const Packet& tooLarge : {Packet{"/bin/rm", {"-fR", std::string("/Applications/last\0y", 20)}},
                                 Packet{"/usr/bin/touch", {"/" + std::string(3'000'000, 'x')}},
                                 Packet{"/bin/rm", std::vector<std::string>(maxTexts + 1, "-fR")}}) {
    EXPECT_FALSE(connection_->send(tooLarge));
  }
  EXPECT_EQ(namesIn(on("/Applications")), "last");

  const auto descriptors = [](const std::string& process) {
    return std::distance(fs::directory_iterator("/proc/" + process + "/fd"), {});
  };
  const std::string helper = std::to_string(helper_->process);
  const auto before = descriptors("self") + descriptors(helper);
  for (int i = 0; i < 10'000; ++i) ASSERT_EQ(run("/usr/bin/touch", {"/Applications/x"}), "");
  EXPECT_LT(descriptors("self") + descriptors(helper), before + 3);

  std::vector<std::string> arguments = {"-fR", "/Applications/x"};
  for (int i = 0; i < 12'000; ++i) arguments.push_back("/Applications/" + std::string(80, 'x') + std::to_string(i));
  arguments.emplace_back("/Applications/last");
  EXPECT_EQ(run("/bin/rm", arguments), "");
  EXPECT_EQ(namesIn(on("/Applications")), "");
}

TEST_F(RightsHelperTest, ReportsASignalAndRemovesStagedItems) {
  const auto lock = *machine_.volume().tryLock();
  auto transaction = std::move(*HelperTransaction::begin(connection_, lock->get()));
  for (int i = 0; i < 3000; ++i) writeFile(machine_.payload("X.app") / std::to_string(i), "x");
  struct Observer : PatientObserver {
    explicit Observer(pid_t helper) : process(helper) {}
    void willStage(std::size_t /*item*/) override { ::kill(process, SIGTERM); }
    pid_t process;
  } observer(helper_->process);
  const std::string source = machine_.payload("X.app");
  EXPECT_FALSE(transaction->stage({{{source, "/Applications/X.app"}}}, observer));
  EXPECT_EQ(signal_, SIGTERM);
  transaction.reset();
  EXPECT_EQ(namesIn(on("/Applications")) + namesIn(on("/Library/Application Support")), "");
}

TEST_F(RightsHelperTest, FinishesACommitAfterTheInstallerHasEnded) {
  const auto lock = *machine_.volume().tryLock();
  auto transaction = HelperTransaction::begin(connection_, lock->get());
  ASSERT_TRUE(transaction);
  for (int i = 0; i < 500; ++i) writeFile(machine_.payload("files") / std::to_string(i), "x");
  Packet stage{std::string(InstallerSays::stage)};
  Packet commit{std::string(InstallerSays::commit)};
  for (int i = 0; i < 500; ++i) {
    const std::string name = std::to_string(i);
    stage.texts.insert(stage.texts.end(), {machine_.payload("files") / name, "/Applications/" + name, ""});
    commit.texts.push_back(name);
  }
  ASSERT_TRUE(connection_->send(stage));
  while (connection_->receive()->name != HelperSays::done) {
  }
  ASSERT_TRUE(connection_->send(commit));
  connection_->close();
  EXPECT_EQ(helper_->end(), 0);
  EXPECT_EQ(std::distance(fs::directory_iterator(on("/Applications")), {}), 500);
  EXPECT_EQ(namesIn(on("/Library/Application Support")), "");
}

TEST_F(RightsHelperTest, KilledMidwayIsAFailedStep) {
  const auto lock = *machine_.volume().tryLock();
  const auto transaction = std::move(*HelperTransaction::begin(connection_, lock->get()));
  ::kill(helper_->process, SIGKILL);
  EXPECT_EQ(helper_->end(), -SIGKILL);
  EXPECT_EQ(transaction->commit({{0}}).front().error().reason(), "Broken pipe");
  EXPECT_EQ(run("/usr/bin/touch", {"/Applications/x"}), "refused");
  EXPECT_FALSE(fs::exists(on("/Applications/x")));
}

TEST_F(RightsHelperTest, ServesOneUserOnlyAndEndsWithTheInstaller) {
  connection_.reset();
  EXPECT_EQ(helper_->end(), 0);
  fs::create_directory_symlink(on(""), on("/self"));
  for (const char* const folder : {"/theirs/Applications", "/theirs/Library", "/empty"}) {
    fs::create_directories(on(folder));
  }
  setOwner(on("/theirs"), 1, 1);
  ::chmod(on("/private").c_str(), 0700);
  const std::tuple<fs::path, uid_t, const char*, bool> cases[] = {
      {on(""), nobody, "SUDO_UID=65534", true}, {on(""), nobody, "SUDO_UID=1", false},  // called by somebody else
      {on(""), nobody, "PKEXEC_UID=0", false},  {on(""), 0, "", false},                 // root needs no helper
      {on("/self"), nobody, "", false},         {"volume", nobody, "", false},
      {on("/private/etc"), nobody, "", false},  // the user does not get there
      {on("/theirs"), nobody, "", false},       // somebody else's volume
      {on("/empty"), nobody, "", false},        // no volume
  };
  for (const auto& [volume, user, variable, isServed] : cases) {
    HelperProcess other(program_, volume, user, variable);
    EXPECT_EQ(HelperConnection(std::move(other.socket), {}).receiveReady(), isServed) << volume << user << variable;
  }
}

TEST_F(RightsHelperTest, DropsCapabilitiesThatItDoesNotNeed) {
  const std::string status = readFile("/proc/" + std::to_string(helper_->process) + "/status");
  // Owners, other people's files, and becoming the user: bits 0, 1, 3, 6 and 7.
  const std::string few = "\t00000000000000cb\n";
  const std::string none = "\t0000000000000000\n";
  // In effect is none of them, except for a moment when one is needed.
  const std::string left = "CapInh:" + none + "CapPrm:" + few + "CapEff:" + none + "CapBnd:" + few + "CapAmb:" + none;
  EXPECT_NE(status.find(left + "NoNewPrivs:\t1\n"), std::string::npos) << status;
}

}  // namespace
