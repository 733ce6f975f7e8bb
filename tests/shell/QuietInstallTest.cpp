// SPDX-License-Identifier: Apache-2.0

#include "shell/QuietInstallTest.h"

#include <algorithm>

#include "platform/processes/Executables.h"

namespace {

TEST_F(QuietInstallTest, RejectsInvalidTargets) {
  writeFile(folder_.path() / "file", "");
  fs::create_directories(folder_.path() / "empty");
  fs::create_directories(folder_.path() / "half/Applications");
  // Without a target it is the root of this system, which is no Mac volume either.
  for (const std::string target : {"-target none", "-target file", "-target empty", "-target half", "-target ''", ""}) {
    target_ = target;
    const Outcome outcome = install("");
    EXPECT_EQ(outcome.status, 66) << target;
    EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
    EXPECT_EQ(outcome.errors.find("no folder \"Library\"") != std::string::npos, target == "-target half") << target;
    EXPECT_EQ(outcome.output, "");
  }
  EXPECT_EQ(install("", " -targte none").status, 64);
  EXPECT_EQ(namesIn(folder_.path()), "A copy of the Installer.app empty errors file half output");
  EXPECT_EQ(namesIn(folder_.path() / "empty"), "");
}

TEST_F(QuietInstallAsRootTest, InstallsForWhoCalledSudo) {
  const Outcome outcome = installForNobody();
  expectHandedOver(65534, outcome);
  EXPECT_TRUE(outcome.says(volume_.string() + log_));
  for (const auto& entry : fs::recursive_directory_iterator(volume_ / "Users/nobody")) {
    EXPECT_TRUE(ownerOf(entry.path()).starts_with("65534:")) << entry.path();
    EXPECT_EQ(entry.path().filename().string().find(".installing"), std::string::npos) << entry.path();
  }
  const std::string support = "/Users/nobody/Library/Application Support/Corvane/Pelloria 4/";
  EXPECT_EQ(installed(support + "manifest.xml"), "(no such file)");
  EXPECT_EQ(installed(support + "Packs/Winter.bundle/manifest.xml"), "<manifest/>\n");
  EXPECT_TRUE(fs::exists(volume_ / "Users/nobody/.local/share/applications/com.corvane.dunmore3.desktop"));
  EXPECT_FALSE(fs::exists(volume_ / "Library/Application Support/Adobe/Lightroom")) << "a Lightroom plug-in";
  EXPECT_EQ(namesIn(volume_ / "Applications/Adobe Photoshop CS5/Plug-Ins"), "");

  const std::string before = outcome.output + installed(log_);
  EXPECT_EQ(installForNobody().output + installed(log_), before) << "the same again";
}

TEST_F(QuietInstallAsRootTest, NamesFailuresInItsSummary) {
  ::mkfifo((payload_ / "PHOTOSHOP_PLUGINS/Corvane/Dunmore 3.plugin/Contents/pipe").c_str(), 0600);
  writeFile(payload_ / "PHOTOSHOP_PLUGINS/Corvane/\x1b[31mred", "");
  const Outcome outcome = installForNobody();
  EXPECT_EQ(outcome.errors.find('\x1b'), std::string::npos) << "control characters are escaped";
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.output.starts_with("Dunmore 3 was not installed completely on ")) << outcome.output;
  EXPECT_TRUE(
      outcome.says("Failures: 1\n  /Applications/Adobe Photoshop CS6/Plug-Ins/Corvane/Dunmore 3.plugin: "
                   "Operation not supported\n"))
      << outcome.output;
  EXPECT_NE(outcome.errors.find("A file could not be installed: "), std::string::npos);
  EXPECT_EQ(installed(log_).find("CC 2019"), std::string::npos) << "no further host";
}

TEST_F(QuietInstallAsRootTest, NamesNoLogThatWasNotWritten) {
  for (const char* const folder : {"HD", "LIGHTROOM", "PHOTOSHOP"}) fs::remove_all(payload_ / folder);
  writeFile(volume_ / "Library/Application Support/Corvane", "in the way of the log's folder");
  const Outcome outcome = installForNobody();
  EXPECT_EQ(outcome.status, 0);
  EXPECT_TRUE(outcome.says("\nThe log of installed paths could not be written.\n")) << outcome.output;
  EXPECT_FALSE(outcome.says("Log: ")) << outcome.output;
  EXPECT_FALSE(outcome.says("Items installed: 0")) << outcome.output;
}

TEST_F(QuietInstallAsRootTest, NeedsThePayloadInTheBundle) {
  configure(bundle_, "payload", "Payload");
  EXPECT_EQ(installForNobody().status, 0) << "as packing leaves it";
  fs::rename(payload_, folder_.path() / "Payload");
  const Outcome outcome = installForNobody();
  EXPECT_EQ(outcome.status, 66);
  EXPECT_NE(outcome.errors.find("the payload is not in the bundle yet"), std::string::npos) << outcome.errors;
  EXPECT_EQ(outcome.output, "");
}

TEST_F(QuietInstallAsRootTest, NeedsTheDescriptionOfItsWindow) {
  fs::remove(bundle_ / "Contents/Resources/MainWindow.ui");
  EXPECT_EQ(
      shell("QT_QPA_PLATFORM=offscreen timeout 20 '" + bundle_.string() + "/Contents/MacOS/Installer' " + target_), 69);
  EXPECT_TRUE(says("no window: ")) << output();
}

TEST_F(QuietInstallAsRootTest, DoesNotAskWithoutATerminal) {
  const Outcome outcome = install("setsid -w setpriv --reuid=65534 --regid=65534 --clear-groups --reset-env");
  EXPECT_EQ(outcome.status, 0);
  // With sudo it turns out at the first launch, and without any such program before it.
  const bool isTried = findExecutable("sudo").has_value();
  EXPECT_EQ(outcome.says("  Administrator rights were refused.\n"), isTried) << outcome.output;
  EXPECT_EQ(outcome.errors.ends_with("SFAuthorization permit with rights error\n"), !isTried) << outcome.errors;
  EXPECT_TRUE(outcome.says("Items installed: 0\n")) << outcome.output;
  EXPECT_EQ(namesIn(volume_ / "Library/Application Support"), "Adobe");
  EXPECT_TRUE(fs::exists(volume_ / "Users/nobody/Library/Application Support/Corvane/Pelloria 4/manifest.xml"));
}

TEST_F(QuietInstallAsRootTest, InstallsAllThoughNobodyCanReadTheSummary) {
  for (const char* const outputs : {" >/dev/full", " >&- 2>&- <&-"}) {
    EXPECT_EQ(installForNobody(outputs).status, 74) << outputs;
    EXPECT_NE(installed(log_).find("CC 2015.5"), std::string::npos) << "up to the last host";
    fs::remove(volume_.string() + log_);
  }
}

TEST_F(QuietInstallAsRootTest, IsStoppedWhileItWaitsForAnotherInstaller) {
  const std::string lock = "flock '" + volume_.string() + "' sleep 1 & sleep 0.2; ";
  const Outcome outcome = install(lock + "SUDO_UID=65534 timeout -s TERM --preserve-status 0.4");
  EXPECT_EQ(outcome.status, 143);
  EXPECT_NE(outcome.errors.find("Waiting for another installer to finish"), std::string::npos) << outcome.errors;
  EXPECT_TRUE(outcome.says("Stopped by signal 15. Nothing was changed.\n")) << outcome.output;
}

}  // namespace
