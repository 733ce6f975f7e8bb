// SPDX-License-Identifier: Apache-2.0

#include "foundation/Text.h"
#include "platform/propertylist/PropertyList.h"
#include "support/ProgramTest.h"

namespace {

/// The tool that was built, on a sample volume of the user nobody.
class ToolProgramTest : public ProgramTest {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to install for somebody else";
    makeVolume("nobody");
    fs::create_directory(bundle_.parent_path());
    copyInstaller(bundle_);
  }
  int tool(const std::string& arguments) { return shell("LANG=C SUDO_UID=65534 " + program_ + " " + arguments); }

  const std::string target_ = " --target '" + volume_.string() + "'";
  const fs::path bundle_ = folder_.path() / "Installer's folder/Installer.app";
  const std::string program_ = "\"" + bundle_.string() + "/Contents/MacOS/InstallerTool\"";
};

TEST_F(ToolProgramTest, EndsWithTheStatusesThatScriptsRelyOn) {
  EXPECT_EQ(tool("--help"), 0);
  EXPECT_TRUE(says("COMMAND")) << output();
  for (const char* const wrong : {"", "frob", "plan --frob", "plan --target", "verify --yes", "remove --json"}) {
    EXPECT_EQ(tool(wrong), 64) << wrong;
  }
  EXPECT_EQ(tool("--version --target /nowhere"), 0);
  EXPECT_EQ(output(), "Dunmore 3 3.1.2\n") << "which needs no volume";
  EXPECT_EQ(tool("plan --target /nowhere"), 66);
  EXPECT_EQ(tool("plan" + target_ + " >/dev/full"), 74);
  EXPECT_EQ(tool("verify" + target_), 1) << "nothing is installed";
  EXPECT_EQ(tool("remove" + target_), 0) << "nothing is to be removed";
  EXPECT_EQ(tool("remove" + target_ + " --yes --json"), 0);
  EXPECT_TRUE(says("\"isDone\": true")) << output();
  EXPECT_EQ(shell("LANG=de_DE.UTF-8 " + program_ + " plan" + target_), 0);
  EXPECT_TRUE(says("Objekte: ")) << output();
}

TEST_F(ToolProgramTest, ChecksBundlesForTheirMakers) {
  EXPECT_EQ(tool("check"), 64);
  EXPECT_EQ(tool("check ''"), 64);
  EXPECT_EQ(tool("check /nowhere"), 66);
  EXPECT_EQ(tool("check '" + folder_.path().string() + "'"), 66) << "no bundle";
  fs::remove(bundle_ / "Contents/Resources/fr.lproj/license.txt");
  EXPECT_EQ(tool("check --json \"" + bundle_.string() + "\""), 1);
  EXPECT_TRUE(says("\"id\": \"texts.licence-untranslated\"")) << output();
}

TEST_F(ToolProgramTest, ItsMunkiItemInstallsOnceAndRemoves) {
  EXPECT_EQ(tool("munki" + target_), 0);
  const auto withoutVersion = [](const std::string& text) {
    const auto list = readPropertyList(text);
    return list ? replacingOccurrences(text, entryOf(*list, "version").text(), "VERSION") : "no property list";
  };
  EXPECT_EQ(withoutVersion(output()), withoutVersion(readFile(MUNKI_ITEM))) << "fleet/munki has another one";

  const fs::path managed = bundle_.parent_path();
  EXPECT_EQ(tool("munki" + target_ + " --folder \"" + managed.string() + "\""), 0);
  const auto item = readPropertyList(output());
  ASSERT_TRUE(item);
  const auto run = [&](const char* key) {
    writeFile(folder_.path() / "script", entryOf(*item, key).text());
    return shell("INSTALLER_USER=nobody INSTALLER_TARGET='" + volume_.string() + "' sh '" +
                 (folder_.path() / "script").string() + "'");
  };
  const fs::path aside = folder_.path() / "aside.app";
  fs::rename(bundle_, aside);
  EXPECT_EQ(run("installcheck_script"), 0) << "no installer";
  fs::rename(aside, bundle_);
  EXPECT_EQ(run("installcheck_script"), 0) << "no product";
  EXPECT_EQ(run("postinstall_script"), 0) << output();
  EXPECT_EQ(run("installcheck_script"), 1) << "all is well: " << output();
  fs::remove_all(volume_.string() + "/Applications/Corvane Dunmore 3 Studio.app/Contents/Resources");
  EXPECT_EQ(run("installcheck_script"), 0) << "damaged";
  EXPECT_EQ(run("uninstall_script"), 0) << output();
  EXPECT_FALSE(fs::exists(volume_.string() + "/Applications/Corvane Dunmore 3 Studio.app"));
  EXPECT_FALSE(fs::exists(bundle_));
  EXPECT_EQ(run("uninstall_script"), 0) << "nothing is left";
}

}  // namespace
