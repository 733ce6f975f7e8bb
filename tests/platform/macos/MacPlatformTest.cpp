// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/macos/MacLanguages.h"
#include "platform/macos/MacLaunchServices.h"
#include "platform/macos/MacPreferences.h"
#include "platform/macos/MacTools.h"
#include "platform/processes/ProcessEnd.h"
#include "support/TestMachine.h"

namespace {

TEST(MacLanguagesTest, AreWhatTheSystemPrefersThenEnglish) {
  // On a Mac they are the account's own. Elsewhere the test says which ones.
  if (::setenv("MAC_LANGUAGES", "zh-Hans-CN,de-AT,de", 1) != 0) FAIL();
  const auto languages = preferredLanguagesOfSystem();
  EXPECT_EQ(languages.back(), "en");
  if (languages.front() != "zh-Hans-CN") GTEST_SKIP() << "this account has other languages";
  EXPECT_EQ(languages, (std::vector<std::string>{"zh-Hans-CN", "zh-Hans", "zh", "de-AT", "de", "en"}));
}

TEST(MacPreferencesTest, KeepEveryKindOfValueAndForgetRemovedOnes) {
  RecordingLog log;
  const std::string domain = "com.corvane.installer.test";
  const Value::Dictionary dictionary = {{"Größe", std::string("7 < 8")},
                                        {"list", Value::Array{true, std::int64_t{42}}}};
  {
    MacPreferences preferences(log);
    EXPECT_TRUE(preferences.copyAppValue("none", domain).isNone());
    preferences.setAppValue("text", std::string("Ä & ö"), domain);
    preferences.setAppValue("dictionary", dictionary, domain);
    EXPECT_EQ(preferences.copyAppValue("text", domain).text(), "Ä & ö") << "before it is written";
    EXPECT_TRUE(preferences.synchronize(domain));
  }
  MacPreferences again(log);
  EXPECT_EQ(again.copyAppValue("dictionary", domain), Value(dictionary));
  for (const char* const key : {"text", "dictionary"}) again.setAppValue(key, {}, domain);
  EXPECT_TRUE(again.copyAppValue("text", domain).isNone());
  again.setAppValue("text", std::string("\x01"), domain);
  EXPECT_EQ(log.lines.size(), 1U) << "no property list can hold the text";
  again.setAppValue("text", std::string("x"), "a/domain");
  EXPECT_TRUE(again.copyAppValue("text", "a/domain").isNone());
}

class MacToolsTest : public MachineTest {
 protected:
  Volume volume_{on("/").parent_path().string(), machine_.inBundle("").parent_path().parent_path().string()};
};

TEST_F(MacToolsTest, AreTheSystemsOwnAndStayOnTheVolume) {
  writeFile(on("/Applications/file"), "");
  fs::create_symlink("/Applications/file", on("/link"));
  const auto commandOf = [&](const std::string& tool, const std::vector<std::string>& arguments) {
    const auto command = resolveTool(tool, arguments, volume_);
    std::string text = command ? command->executable : "refused";
    for (std::size_t i = 0; command && i < command->arguments.size(); ++i) text += " " + command->arguments[i];
    const std::string& root = volume_.root();
    for (std::size_t at = 0; (at = text.find(root, at)) != std::string::npos;) text.replace(at, root.size(), "VOLUME");
    return text;
  };
  EXPECT_EQ(commandOf("/usr/sbin/chown", {"-R", "me:admin", "/link"}), "/usr/sbin/chown -R me:admin VOLUME/link");
  EXPECT_EQ(commandOf("/usr/bin/touch", {"/link"}), "/usr/bin/touch VOLUME/Applications/file");
  EXPECT_EQ(commandOf("/bin/mkdir", {"-p", "/new/folder"}), "/bin/mkdir -p VOLUME/new/folder");
  EXPECT_EQ(commandOf("/usr/sbin/chmod", {"0644", "/Applications/../../file"}), "/bin/chmod 0644 VOLUME/file");
  EXPECT_EQ(commandOf("/bin/sh", {"-c", "true"}), "refused");
  EXPECT_EQ(commandOf("/bin/rm", {"-fR", std::string("/x\0y", 4)}), "refused");
  const std::string inside = machine_.inBundle("Resources/files").string();
  EXPECT_EQ(commandOf("/bin/rm", {"-fR", inside}), "refused");
  EXPECT_EQ(commandOf("/bin/mv", {inside, "/Applications/file"}), "refused") << "takes something out of the bundle";
  EXPECT_EQ(commandOf("/bin/cp", {"-R", inside, "/Applications/file"}),
            "/bin/cp -R " + inside + " VOLUME/Applications/file");
}

TEST_F(MacToolsTest, RegisterApplicationsOfTheRunningSystemOnly) {
  makeBundle(on("/New.app"), {{"CFBundleExecutable", "New"}, {"CFBundlePackageType", "APPL"}});
  writeFile(on("/New.app/Contents/MacOS/New"), "#!/bin/sh\n");
  fs::permissions(on("/New.app/Contents/MacOS/New"), fs::perms::owner_all);
  MacLaunchServices otherVolume(volume_);
  EXPECT_EQ(otherVolume.registerApplication("/New.app", /*update=*/true), LaunchServices::noErr);
  EXPECT_EQ(otherVolume.registerApplication("/None.app", /*update=*/true), LaunchServices::fnfErr);
  const Volume system("/", "/no/bundle");
  MacLaunchServices running(system);
  EXPECT_EQ(running.registerApplication(on("/New.app"), /*update=*/true), LaunchServices::noErr);
  EXPECT_EQ(running.registerApplication("/no/such.app", /*update=*/true), LaunchServices::fnfErr);
}

TEST(ProcessEndTest, IsToldOfRunningAndOfEndedProcesses) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    char byte = 0;
    ::_exit(static_cast<int>(::read(ends[0], &byte, 1)));  // until the other end is closed
  }
  ::close(ends[0]);
  const FileDescriptor running = processEndDescriptor(child);
  PollRunLoop runLoop;
  bool hasEnded = false;
  auto watch = runLoop.watchReadable(running.get(), [&] { hasEnded = true; });
  runLoop.runUntilDate(RunLoop::Clock::now());
  EXPECT_FALSE(hasEnded);
  // The child has a copy of the writing end as well; a byte ends it for certain.
  ASSERT_EQ(::write(ends[1], "", 1), 1);
  while (!hasEnded) runLoop.runBeforeDate(RunLoop::distantFuture);
  watch.reset();

  bool isToldAtOnce = false;
  const FileDescriptor ended = processEndDescriptor(child);  // which nobody has waited for yet
  ASSERT_TRUE(ended);
  watch = runLoop.watchReadable(ended.get(), [&] { isToldAtOnce = true; });
  runLoop.runUntilDate(RunLoop::Clock::now());
  EXPECT_TRUE(isToldAtOnce);
  EXPECT_EQ(::waitpid(child, nullptr, 0), child);
  ::close(ends[1]);
}

}  // namespace
