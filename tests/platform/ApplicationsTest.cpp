#include <sys/stat.h>

#include <cstdlib>

#include "support/TestMachine.h"

namespace {

class ApplicationsTest : public testing::Test {
 protected:
  void makeApplication(const std::string& path, const std::map<std::string, std::string>& info) {
    makeBundle(machine_.onVolume(path), info);
    const fs::path program = machine_.onVolume(path) / "Contents/MacOS" / fs::path(path).stem();
    writeFile(program, "#!/bin/sh\n");
    ::chmod(program.c_str(), 0755);
  }
  std::int32_t registered(const std::string& path, bool update = true) {
    return machine_.platform.launchServices.registerApplication(path, update);
  }
  [[nodiscard]] fs::path entries() const { return machine_.onVolume(machine_.home() + "/.local/share/applications"); }

  TestMachine machine_;
};

TEST_F(ApplicationsTest, AreRegisteredAsDesktopEntries) {
  makeApplication("/Applications/Été 100% $HOME.app",
                  {{"CFBundleIdentifier", "com.corvane.ete"}, {"CFBundleName", "Été\\3"}});
  EXPECT_EQ(registered("/Applications/Été 100% $HOME.app"), LaunchServices::noErr);
  const fs::path entry = entries() / "com.corvane.ete.desktop";
  EXPECT_EQ(modeOf(entry), "644");
  const std::string text = readFile(entry);
  EXPECT_NE(text.find("Name=Été\\\\3\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Exec=\"" + machine_.onVolume("").string() + "/Applications/Été 100%% \\\\$HOME.app/"),
            std::string::npos)
      << text;
  EXPECT_EQ(std::system(("desktop-file-validate '" + entry.string() + "'").c_str()), 0);
}

TEST_F(ApplicationsTest, AreUpdatedWhenAsked) {
  makeApplication("/Applications/A.app", {{"CFBundleIdentifier", "../a b/c"}});
  EXPECT_EQ(registered("/Applications/A.app"), LaunchServices::noErr);
  EXPECT_EQ(namesIn(entries()), "-.-a-b-c.desktop");
  const fs::path entry = entries() / "-.-a-b-c.desktop";
  writeFile(entry, "old");
  EXPECT_EQ(registered("/Applications/A.app", /*update=*/false), LaunchServices::noErr);
  EXPECT_EQ(readFile(entry), "old");
  EXPECT_EQ(registered("/Applications/A.app"), LaunchServices::noErr);
  EXPECT_NE(readFile(entry), "old");
}

TEST_F(ApplicationsTest, AreNotWhateverIsNone) {
  EXPECT_EQ(registered("/Applications/None.app"), LaunchServices::fnfErr);
  makeBundle(machine_.onVolume("/X.plugin"), {});
  EXPECT_EQ(registered("/X.plugin"), LaunchServices::kLSNotAnApplicationErr);
  makeBundle(machine_.onVolume("/X.app"), {});
  EXPECT_EQ(registered("/X.app"), LaunchServices::kLSNoExecutableErr);
  makeApplication("/a=b.app", {});
  EXPECT_EQ(registered("/a=b.app"), LaunchServices::kLSServerCommunicationErr)
      << "a desktop entry cannot say this path";
  makeApplication("/A.app", {});
  writeFile(machine_.onVolume(machine_.home() + "/.local"), "a file where a folder is needed");
  EXPECT_EQ(registered("/A.app"), LaunchServices::kLSServerCommunicationErr);
}

}  // namespace
