// SPDX-License-Identifier: Apache-2.0

#include "foundation/Text.h"
#include "support/ProgramTest.h"

namespace {

/// The commands of the page, in one script. Root needs no sudo.
std::string documentedCommands() {
  std::string script = "set -eux\n";
  bool isCommand = false;
  const std::string page = readFile(fs::path(SOURCE_FOLDER) / "docs/making-an-installer.md");
  for (const std::string_view line : split(page, '\n')) {
    const bool isFence = line.starts_with("```");
    if (isCommand && !isFence) script += replacingOccurrences(line, "sudo ", "") + "\n";
    if (isFence) isCommand = line == "```sh";
  }
  return script;
}

using WalkthroughTest = ProgramTest;

/// In a folder like that of the sources after a build.
TEST_F(WalkthroughTest, LeadsFromNothingToAnInstalledUpgradedAndRemovedProduct) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root: the commands install";
  fs::create_symlink(BUILD_FOLDER, folder_.path() / "build");
  fs::create_symlink(SOURCE_FOLDER "/resources", folder_.path() / "resources");
  fs::create_symlink(SOURCE_FOLDER "/sample", folder_.path() / "sample");
  writeFile(folder_.path() / "script", documentedCommands());
  ASSERT_EQ(shell("env -u SUDO_UID -u DISPLAY -u WAYLAND_DISPLAY LANG=C bash script"), 0) << output();
  EXPECT_TRUE(says("Installer.app: nothing is wrong")) << output();
  EXPECT_TRUE(says("Nordlys 2 was installed on")) << output();
  EXPECT_NE(namesIn(folder_.path() / "Nordlys/Pages").find("completion.png"), std::string::npos) << output();
  const fs::path volume = folder_.path() / "Nordlys/Volume";
  EXPECT_FALSE(fs::exists(volume / "Library/Application Support/Halvard")) << "removed: " << output();
  EXPECT_FALSE(fs::exists(volume / "Applications/Adobe Photoshop CS6/Presets/Actions/Nordlys 2.atn")) << output();
}

}  // namespace
