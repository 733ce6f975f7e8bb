// SPDX-License-Identifier: Apache-2.0

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "foundation/Text.h"
#include "support/TestMachine.h"

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

/// In a folder like that of the sources after a build.
TEST(WalkthroughTest, LeadsFromNothingToAnInstalledUpgradedAndRemovedProduct) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root: the commands install";
  const TemporaryFolder folder;
  fs::create_symlink(BUILD_FOLDER, folder.path() / "build");
  fs::create_symlink(SOURCE_FOLDER "/sample", folder.path() / "sample");
  writeFile(folder.path() / "script", documentedCommands());
  const std::string command = "cd '" + folder.path().string() +
                              "' && env -u SUDO_UID -u DISPLAY -u WAYLAND_DISPLAY LANG=C bash script >output 2>&1";
  const int status = std::system(command.c_str());
  ASSERT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, 0) << readFile(folder.path() / "output");

  const std::string output = readFile(folder.path() / "output");
  EXPECT_NE(output.find("Installer.app: nothing is wrong"), std::string::npos) << output;
  EXPECT_NE(output.find("Nordlys 2 was installed on"), std::string::npos) << output;
  EXPECT_NE(namesIn(folder.path() / "Nordlys/Pages").find("completion.png"), std::string::npos) << output;
  const fs::path volume = folder.path() / "Nordlys/Volume";
  EXPECT_FALSE(fs::exists(volume / "Library/Application Support/Halvard")) << "removed: " << output;
  EXPECT_FALSE(fs::exists(volume / "Applications/Adobe Photoshop CS6/Presets/Actions/Nordlys 2.atn")) << output;
}

}  // namespace
