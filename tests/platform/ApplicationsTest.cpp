#include <sys/stat.h>

#include "support/TestMachine.h"

namespace {

class ApplicationsTest : public MachineTest {
 protected:
  void makeApplication(const std::string& path, const Texts& info) {
    makeBundle(on(path), info);
    const fs::path program = on(path) / "Contents/MacOS" / fs::path(path).stem();
    writeFile(program, "#!/bin/sh\n");
    ::chmod(program.c_str(), 0755);
  }
  std::int32_t registered(const std::string& path) {
    return platform_.launchServices.registerApplication(path, /*update=*/true);
  }
};

TEST_F(ApplicationsTest, AreRegisteredAsDesktopEntries) {
  makeApplication("/Applications/Été 100% $HOME.app",
                  {{"CFBundleIdentifier", "com.corvane.ete"}, {"CFBundleName", "Été\\3"}});
  EXPECT_EQ(registered("/Applications/Été 100% $HOME.app"), LaunchServices::noErr);
  const fs::path entry = on(machine_.home() + "/.local/share/applications/com.corvane.ete.desktop");
  EXPECT_EQ(modeOf(entry), "644");
  EXPECT_EQ(readFile(entry), "[Desktop Entry]\nType=Application\nVersion=1.0\nName=Été\\\\3\nExec=\"" +
                                 on("").string() +
                                 "/Applications/Été 100%% \\\\$HOME.app/Contents/MacOS/Été 100%% \\\\$HOME\"\n"
                                 "Terminal=false\nCategories=Graphics;\n");
}

TEST_F(ApplicationsTest, AreNotWhateverIsNone) {
  EXPECT_EQ(registered("/None.app"), LaunchServices::fnfErr);
  makeBundle(on("/X.plugin"), {});
  EXPECT_EQ(registered("/X.plugin"), LaunchServices::kLSNotAnApplicationErr);
  makeBundle(on("/X.app"), {});
  EXPECT_EQ(registered("/X.app"), LaunchServices::kLSNoExecutableErr);
  makeApplication("/a=b.app", {});
  EXPECT_EQ(registered("/a=b.app"), LaunchServices::kLSServerCommunicationErr) << "no desktop entry can say this path";
  makeApplication("/A.app", {});
  writeFile(on(machine_.home() + "/.local"), "a file where a folder is needed");
  EXPECT_EQ(registered("/A.app"), LaunchServices::kLSServerCommunicationErr);
}

}  // namespace
