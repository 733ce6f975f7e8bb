// SPDX-License-Identifier: Apache-2.0

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "foundation/Text.h"
#include "platform/propertylist/PropertyList.h"
#include "support/TestMachine.h"

namespace {

/// The program that was built, on a sample volume of the user nobody.
class ToolProgramTest : public testing::Test {
 protected:
  void SetUp() override {
    if (::geteuid() != 0) GTEST_SKIP() << "needs root, to install for somebody else";
    ASSERT_EQ(std::system((MAKE_SAMPLE_VOLUME " '" + volume_ + "' nobody " STAND_IN).c_str()), 0);
    fs::create_directory(bundle_.parent_path());
    fs::copy(INSTALLER_BUNDLE, bundle_, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  }

  /// The status of a shell's command; what it writes is in output().
  int shell(const std::string& command) {
    const int status = std::system(("(" + command + ") >'" + output_.string() + "' 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  int tool(const std::string& arguments) { return shell("LANG=C SUDO_UID=65534 " + program_ + " " + arguments); }
  [[nodiscard]] std::string output() const { return readFile(output_); }

  TemporaryFolder folder_;
  const std::string volume_ = (folder_.path() / "volume").string();
  const std::string target_ = " --target '" + volume_ + "'";
  const fs::path bundle_ = folder_.path() / "Installer's folder/Installer.app";
  const std::string program_ = "\"" + bundle_.string() + "/Contents/MacOS/InstallerTool\"";
  const fs::path output_ = folder_.path() / "output";
};

TEST_F(ToolProgramTest, EndsWithTheStatusesThatScriptsRelyOn) {
  EXPECT_EQ(tool("--help"), 0);
  EXPECT_NE(output().find("COMMAND"), std::string::npos) << output();
  for (const char* const wrong : {"", "frob", "plan --frob", "plan --target", "verify --yes", "remove --json"}) {
    EXPECT_EQ(tool(wrong), 64) << wrong;
  }
  EXPECT_EQ(tool("plan --target /nowhere"), 66);
  EXPECT_EQ(tool("plan" + target_ + " >/dev/full"), 74);
  EXPECT_EQ(tool("verify" + target_), 1) << "nothing is installed";
  EXPECT_EQ(tool("remove" + target_), 0) << "nothing is to be removed";
  EXPECT_EQ(tool("remove" + target_ + " --yes --json"), 0);
  EXPECT_NE(output().find("\"isDone\": true"), std::string::npos) << output();
  EXPECT_EQ(shell("LANG=de_DE.UTF-8 " + program_ + " plan" + target_), 0);
  EXPECT_NE(output().find("Objekte: "), std::string::npos) << output();
}

TEST_F(ToolProgramTest, ChecksBundlesForTheirMakers) {
  EXPECT_EQ(tool("check"), 64);
  EXPECT_EQ(tool("check /nowhere"), 66);
  EXPECT_EQ(tool("check '" + folder_.path().string() + "'"), 66) << "no bundle";
  const std::string check = "check '" + (folder_.path() / "product.app").string() + "'";
  fs::copy(bundle_, folder_.path() / "product.app", fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  fs::remove(folder_.path() / "product.app/Contents/Resources/fr.lproj/license.txt");
  EXPECT_EQ(tool(check), 1);
  EXPECT_NE(output().find("Contents/Resources/fr.lproj/license.txt: warning: there is no license.txt"),
            std::string::npos)
      << output();
  EXPECT_EQ(tool(check + " --json"), 1);
  EXPECT_NE(output().find("\"id\": \"texts.licence-untranslated\""), std::string::npos) << output();
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
    return shell("INSTALLER_USER=nobody INSTALLER_TARGET='" + volume_ + "' sh '" +
                 (folder_.path() / "script").string() + "'");
  };
  const fs::path aside = folder_.path() / "aside.app";
  fs::rename(bundle_, aside);
  EXPECT_EQ(run("installcheck_script"), 0) << "no installer";
  fs::rename(aside, bundle_);
  EXPECT_EQ(run("installcheck_script"), 0) << "no product";
  EXPECT_EQ(run("postinstall_script"), 0) << output();
  EXPECT_EQ(run("installcheck_script"), 1) << "all is well: " << output();
  fs::remove_all(volume_ + "/Applications/Corvane Dunmore 3 Studio.app/Contents/Resources");
  EXPECT_EQ(run("installcheck_script"), 0) << "damaged";
  EXPECT_EQ(run("uninstall_script"), 0) << output();
  EXPECT_FALSE(fs::exists(volume_ + "/Applications/Corvane Dunmore 3 Studio.app"));
  EXPECT_FALSE(fs::exists(bundle_));
  EXPECT_EQ(run("uninstall_script"), 0) << "nothing is left";
}

}  // namespace
